#include "platform/quicktime/modules/http_module.h"

#include <curl/curl.h>

#include <memory>

namespace {

constexpr long kMaximumRedirects = 5;
constexpr long kStalledBytesPerSecond = 16;

struct Transfer {
    std::uint64_t remaining;
    HttpReceiver receiver;
    void* context;
    bool stopped;
};

std::size_t Receive(char* bytes, std::size_t unit, std::size_t count, void* context) {
    auto& transfer = *static_cast<Transfer*>(context);
    const std::size_t size = unit * count;
    transfer.stopped = size > transfer.remaining || !transfer.receiver(transfer.context, bytes, size);
    if (transfer.stopped) return CURL_WRITEFUNC_ERROR;
    transfer.remaining -= size;
    return size;
}

HttpOutcome OutcomeOf(CURLcode code, long status) {
    constexpr long kWhole = 200;
    switch (code) {
    // Others that are no errors have a part of the data or none: unasked parts, redirections to nowhere.
    case CURLE_OK: return status == kWhole ? kHttpOk : kHttpRefused;
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_URL_MALFORMAT: return kHttpBadAddress;
    case CURLE_HTTP_RETURNED_ERROR: return status == 404 || status == 410 ? kHttpNotFound : kHttpRefused;
    case CURLE_FILESIZE_EXCEEDED: return kHttpStopped;
    case CURLE_ABORTED_BY_CALLBACK: return kHttpCancelled;
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
    case CURLE_RECV_ERROR:
    case CURLE_WEIRD_SERVER_REPLY: return kHttpBroken;
    default: return kHttpRefused;
    }
}

struct RemoveFromMulti {
    CURLM* multi;
    void operator()(CURL* curl) const { curl_multi_remove_handle(multi, curl); }
};

/// Transfers, looking up several times a second. CURLE_ABORTED_BY_CALLBACK when that is cancelled.
CURLcode Perform(CURL* curl, HttpCancelled cancelled) {
    constexpr int kMillisecondsBetweenLooks = 50;
    const std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)> multi(curl_multi_init(), curl_multi_cleanup);
    if (multi == nullptr || curl_multi_add_handle(multi.get(), curl) != CURLM_OK) return CURLE_OUT_OF_MEMORY;
    const std::unique_ptr<CURL, RemoveFromMulti> added(curl, {multi.get()});
    int running = 1;
    while (curl_multi_perform(multi.get(), &running) == CURLM_OK && running > 0) {
        if (cancelled()) return CURLE_ABORTED_BY_CALLBACK;
        curl_multi_poll(multi.get(), nullptr, 0, kMillisecondsBetweenLooks, nullptr);
    }
    int left = 0;
    const CURLMsg* message = curl_multi_info_read(multi.get(), &left);
    return message != nullptr ? message->data.result : CURLE_OUT_OF_MEMORY;
}

HttpOutcome Fetch(const char* url, const HttpLimits* limits, HttpReceiver receiver, void* context,
                  HttpCancelled cancelled) {
    static const bool ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> handle(ready ? curl_easy_init() : nullptr,
                                                                     curl_easy_cleanup);
    if (handle == nullptr) return kHttpRefused;
    CURL* curl = handle.get();
    Transfer transfer{limits->bytes, receiver, context, false};
    curl_easy_setopt(curl, CURLOPT_URL, url);
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http");
    curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http");
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_MAXREDIRS, kMaximumRedirects);
    curl_easy_setopt(curl, CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L); // the host's signal handlers and alarms stay its own
    curl_easy_setopt(curl, CURLOPT_USERAGENT, "Corvane");
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, static_cast<long>(limits->milliseconds));
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, kStalledBytesPerSecond);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits->stall_seconds));
    curl_easy_setopt(curl, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(limits->bytes));
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, Receive);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &transfer);
    const CURLcode code = Perform(curl, cancelled);
    if (transfer.stopped) return kHttpStopped;
    long status = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
    return OutcomeOf(code, status);
}

} // namespace

extern "C" __attribute__((visibility("default"))) const void* corvane_module() {
    static const HttpModule module = {Fetch};
    return &module;
}
