// Commands of the `zel` tool register themselves here. A command is one source file in tools/
// with a run function that parses its own arguments with option_parser (cli.hpp):
//
//     int run_solve(int argc, char **argv); // argv[0] is "solve"
//     ZEL_TOOL_COMMAND("solve", "solve a Matrix Market system", run_solve);
#pragma once

namespace zel::tool {

using command_main = int (*)(int argc, char **argv);

struct command {
    const char *name;    // "info", "bench", ...
    const char *summary; // one line for `zel --help`
    command_main run;
};

// Adds a command to the tool's table; returns true so it can seed a static.
bool register_command(const command &entry);

} // namespace zel::tool

#define ZEL_TOOL_CONCAT2(a, b) a##b
#define ZEL_TOOL_CONCAT(a, b) ZEL_TOOL_CONCAT2(a, b)
#define ZEL_TOOL_COMMAND(name, summary, run)                                                              \
    static const bool ZEL_TOOL_CONCAT(zel_tool_registered_, __LINE__) =                                   \
        ::zel::tool::register_command({name, summary, run})
