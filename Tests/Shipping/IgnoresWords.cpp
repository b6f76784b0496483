// Built against what users get, where no word of the command line may change anything.
#include <cstdio>
#include <iterator>

#include "CorvaneBrell/LaunchOptions.h"

int main() {
    const char* const words[] = {"CorvaneBrell",      "--dry-run",     "--apply-all",
                                 "--restore-all",     "--status-json", "--toggle-agent",
                                 "com.example.agent", "--help",        "nonsense"};
    const brell::CommandLine read = brell::readCommandLine(static_cast<int>(std::size(words)), words);
    if (read.options == brell::LaunchOptions() && !read.earlyEnd) return 0;
    std::puts("the command line was followed");
    return 1;
}
