#include "host/commands/interruption.h"

#include <array>
#include <csignal>

namespace host {
namespace {

constexpr auto kSignals = std::to_array({SIGINT, SIGTERM, SIGHUP});

volatile std::sig_atomic_t g_signal = 0;

void OnSignal(int signal) {
    g_signal = signal;
}

// Leaves alone what whoever started the program wants to be ignored, as nohup does.
void Handle(int signal, void (*handler)(int), int flags) {
    struct sigaction action = {};
    if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) return;
    action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    ::sigaction(signal, &action, nullptr);
}

} // namespace

Interruption::Interruption() {
    g_signal = 0;
    for (const int signal : kSignals) Handle(signal, OnSignal, static_cast<int>(SA_RESETHAND) | SA_RESTART);
}

Interruption::~Interruption() {
    for (const int signal : kSignals) Handle(signal, SIG_DFL, 0);
}

bool Interruption::IsWished() {
    return g_signal != 0;
}

int Interruption::ExitStatus() {
    constexpr int kSignalStatus = 128;
    return kSignalStatus + g_signal;
}

} // namespace host
