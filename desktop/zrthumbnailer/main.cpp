// SPDX-License-Identifier: MIT
#include "desktop/run.h"

int main(int argc, char** argv)
{
    return zr::desktop::run(argc, argv);
}
