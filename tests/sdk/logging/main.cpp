#include "sharedfilewriter.h"

#include <gmock/gmock.h>
#include <string_view>

// The program is also the second process of its own tests.
int main(int argc, char** argv)
{
    if (argc > 1 && std::string_view(argv[1]) == sharedFileWriterMode)
        return runSharedFileWriter(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
