// SPDX-License-Identifier: MIT
#include "host/interruption.h"

#include <atomic>
#include <csignal>
#include <iterator>

namespace zr
{
namespace
{

constexpr int kStatusOfSignals = 128;
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

std::atomic<int> requestedBy{0};
struct sigaction formerActions[std::size(kSignals)];

void restoreActions()
{
    for (std::size_t i = 0; i < std::size(kSignals); ++i)
        sigaction(kSignals[i], &formerActions[i], nullptr);
}

void note(int signal)
{
    requestedBy = signal;
    restoreActions();
}

} // namespace

Interruption::Interruption()
{
    requestedBy = 0;
    struct sigaction action = {};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART; // reads and writes must not notice it
    sigemptyset(&action.sa_mask);
    for (const int signal : kSignals)
        sigaddset(&action.sa_mask, signal);
    for (std::size_t i = 0; i < std::size(kSignals); ++i) {
        sigaction(kSignals[i], nullptr, &formerActions[i]);
        // Programs that are to outlive their terminal start with such signals ignored.
        if (formerActions[i].sa_handler != SIG_IGN)
            sigaction(kSignals[i], &action, nullptr);
    }
}

Interruption::~Interruption()
{
    restoreActions();
}

bool Interruption::isRequested() const
{
    return requestedBy != 0;
}

int Interruption::status() const
{
    return kStatusOfSignals + requestedBy;
}

} // namespace zr
