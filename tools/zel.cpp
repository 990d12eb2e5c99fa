// The `zel` command: what the library found on this machine, and its benchmarks.
#include <cstdio>
#include <cstring>

#include "cli.hpp"
#include "command.hpp"
#include "zel/runtime.h"
#include "zel/version.h"

namespace zel::tool {
namespace {

constexpr int max_commands = 16;
command table[max_commands];
int table_size = 0;

void print_usage(FILE *out)
{
    std::fprintf(out, "usage: zel [--version] [--help] COMMAND [options]\n\n"
                      "Zelmath's single-threaded layer and core, as seen from this machine.\n\ncommands:\n");
    for (int i = 0; i < table_size; ++i)
        std::fprintf(out, "  %-10s %s\n", table[i].name, table[i].summary);
    std::fprintf(out, "\nRun 'zel COMMAND --help' for a command's options.\n");
}

// The version this tool was built with and the version of the core it loaded, which differ
// when the tool runs against another installed copy of the library.
void print_version()
{
    zel_version loaded;
    zel_serv_get_version(&loaded);
    std::printf("zel %s\n", ZEL_VERSION_STRING);
    std::printf("libzel_core %d.%d.%d, build %s\n", static_cast<int>(loaded.major_version),
                static_cast<int>(loaded.minor_version), static_cast<int>(loaded.patch_version), loaded.build);
}

const command *find(const char *name)
{
    for (int i = 0; i < table_size; ++i)
        if (std::strcmp(table[i].name, name) == 0)
            return &table[i];
    return nullptr;
}

} // namespace

bool register_command(const command &entry)
{
    if (table_size < max_commands)
        table[table_size++] = entry;
    return true;
}

} // namespace zel::tool

int main(int argc, char **argv)
{
    using namespace zel::tool;
    static const option options[] = {
        {"help", no_argument, nullptr, 'h'}, {"version", no_argument, nullptr, 'V'}, {nullptr, 0, nullptr, 0}};
    // '+': the tool's options end at the command's name; the rest belongs to the command.
    option_parser parser("zel", argc, argv, "+hV", options);
    for (int code; (code = parser.next()) != -1;) {
        if (code == 'h') {
            print_usage(stdout);
            return exit_ok;
        }
        if (code == 'V') {
            print_version();
            return exit_ok;
        }
        return exit_usage;
    }
    const int first = parser.first_operand();
    if (first >= argc) {
        print_usage(stderr);
        return exit_usage;
    }
    if (const command *entry = find(argv[first]))
        return entry->run(argc - first, argv + first);
    std::fprintf(stderr, "zel: unknown command '%s'\n\n", argv[first]);
    print_usage(stderr);
    return exit_usage;
}
