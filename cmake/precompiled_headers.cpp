// SPDX-License-Identifier: MIT
// For the precompiled headers of the tests.
