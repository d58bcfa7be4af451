extern "C" __declspec(dllexport) int __stdcall nowhere(int, int)
{
    return 1;
}
