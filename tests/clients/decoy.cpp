// A DLL that says it is somebody's and has nothing that anybody else looks for.

extern "C" __declspec(dllexport) int decoy()
{
    return 1;
}
