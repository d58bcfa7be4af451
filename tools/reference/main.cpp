// referencepages: writes all pages, in the project's folder.

#include "reference/pages.h"

#include <filesystem>
#include <fstream>
#include <iostream>

int main()
{
    try {
        const auto sources = tools::readSources(".");
        for (const auto& page : tools::pages()) {
            const auto text = page.text(sources);
            std::filesystem::create_directories(std::filesystem::path(page.file).parent_path());
            std::ofstream file(page.file, std::ios::binary);
            file.exceptions(std::ios::failbit | std::ios::badbit);
            file << text << std::flush;
        }
        return 0;
    } catch (const std::exception& exception) {
        std::cerr << "referencepages: " << exception.what() << '\n';
        return 1;
    }
}
