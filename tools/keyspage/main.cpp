// keyspage FILE: writes the page there.

#include "keyspage/keyspage.h"

#include <fstream>

int main(int count, char** arguments)
{
    if (count != 2)
        return 2;
    std::ofstream file(arguments[1], std::ios::binary);
    file << tools::keysPage();
    return file.flush() ? 0 : 1;
}
