// Subcommands of the `zel` tool register themselves here.
#pragma once

namespace zel::tool {

using command_main = int (*)(int argc, char **argv);

struct command {
    const char *group;   // "info", or "bench" for benchmark suites
    const char *name;    // "" for the group's own command, else the suite name
    const char *summary; // one line for --help
    command_main run;
};

// Adds a command to the tool's table; returns true so it can seed a static.
bool register_command(const command &entry);

} // namespace zel::tool

#define ZEL_TOOL_CONCAT2(a, b) a##b
#define ZEL_TOOL_CONCAT(a, b) ZEL_TOOL_CONCAT2(a, b)
#define ZEL_TOOL_COMMAND(group, name, summary, run)                                                       \
    static const bool ZEL_TOOL_CONCAT(zel_tool_registered_, __LINE__) =                                   \
        ::zel::tool::register_command({group, name, summary, run})
