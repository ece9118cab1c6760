// SPDX-License-Identifier: MIT
// Belongs to the targets whose headers are compiled once for all.
