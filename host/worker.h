// SPDX-License-Identifier: MIT
#pragma once

namespace zr
{

/// Does the files that a run sends (host/worker_messages.h) until it sends no more, or until another worker should go
/// on, since what models leave in memory stays there. Returns the exit status.
int runWorker();

} // namespace zr
