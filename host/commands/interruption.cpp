#include "host/commands/interruption.h"

#include <csignal>
#include <initializer_list>

namespace host {
namespace {

volatile std::sig_atomic_t g_signal = 0;

void OnSignal(int signal) {
    g_signal = signal;
}

void Handle(int signal, void (*handler)(int), int flags) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    ::sigaction(signal, &action, nullptr);
}

} // namespace

Interruption::Interruption() {
    g_signal = 0;
    for (const int signal : {SIGINT, SIGTERM})
        Handle(signal, OnSignal, static_cast<int>(SA_RESETHAND) | SA_RESTART);
}

Interruption::~Interruption() {
    for (const int signal : {SIGINT, SIGTERM}) Handle(signal, SIG_DFL, 0);
}

bool Interruption::IsWished() {
    return g_signal != 0;
}

int Interruption::ExitStatus() {
    constexpr int kSignalStatus = 128;
    return kSignalStatus + g_signal;
}

} // namespace host
