// SPDX-License-Identifier: MIT
// Shared with the resource compiler, so these are macros.
#pragma once

#define ZR_RESOURCE_REGISTRY 101
#define ZR_RESOURCE_PROJECT_NAME 100
#define ZR_RESOURCE_TYPE_LIBRARY 1
