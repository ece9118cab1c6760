// SPDX-License-Identifier: MIT
#include "readers/mesh/obj_reading.h"

namespace zr
{
namespace
{

ObjReading choice = ObjReading::Server;

} // namespace

ObjReading objReading()
{
    return choice;
}

void readObjAs(ObjReading reading)
{
    choice = reading;
}

} // namespace zr
