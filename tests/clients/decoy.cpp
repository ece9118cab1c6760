// SPDX-License-Identifier: MIT
// A DLL that only has the name of another one: it exports none of the functions that users of that one need.

extern "C" __declspec(dllexport) int decoy()
{
    return 1;
}
