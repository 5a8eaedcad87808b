// wav2amr as a process of its own, for timing against other encoders:
//     wav2amr-cli IN.wav OUT.amr [MODE]   (MODE defaults to MR102)
#include "store/AMRConverter.h"

#include <cstdio>

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: wav2amr-cli IN.wav OUT.amr [MODE]\n", stderr);
        return 64;
    }
    const int result = wav2amr(argv[1], argv[2], argc > 3 ? argv[3] : "MR102");
    if (result != AmrOk)
        std::fprintf(stderr, "wav2amr failed with %d\n", result);
    return result;
}
