// The `zel` command: what the library found on this machine, and its benchmarks.
#include <cstdio>
#include <cstring>

#include "command.hpp"

namespace zel::tool {
namespace {

constexpr int max_commands = 32;
command table[max_commands];
int table_size = 0;

void print_usage(FILE *out)
{
    std::fprintf(out, "usage: zel <command> [options]\n\n"
                      "Zelmath's single-threaded layer and core, as seen from this machine.\n\ncommands:\n");
    for (int i = 0; i < table_size; ++i)
        if (table[i].name[0] == '\0')
            std::fprintf(out, "  %-16s %s\n", table[i].group, table[i].summary);
    bool any_bench = false;
    for (int i = 0; i < table_size; ++i)
        if (std::strcmp(table[i].group, "bench") == 0) {
            if (!any_bench)
                std::fprintf(out, "\nbenchmarks (zel bench <suite>):\n");
            any_bench = true;
            std::fprintf(out, "  %-16s %s\n", table[i].name, table[i].summary);
        }
    std::fprintf(out, "\nRun 'zel <command> --help' for a command's options.\n");
}

const command *find(const char *group, const char *name)
{
    for (int i = 0; i < table_size; ++i)
        if (std::strcmp(table[i].group, group) == 0 && std::strcmp(table[i].name, name) == 0)
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
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0) {
        print_usage(argc < 2 ? stderr : stdout);
        return argc < 2 ? 2 : 0;
    }
    if (const command *entry = find(argv[1], ""))
        return entry->run(argc - 1, argv + 1);
    if (std::strcmp(argv[1], "bench") == 0 && argc >= 3)
        if (const command *entry = find("bench", argv[2]))
            return entry->run(argc - 2, argv + 2);
    std::fprintf(stderr, "zel: unknown command '%s'\n\n", argv[1]);
    print_usage(stderr);
    return 2;
}
