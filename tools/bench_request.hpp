// What `zel bench` may be asked: the suites, their sections and options, and the parsed request.
// Both the `zel` command (which checks the request, then runs zel-bench) and zel-bench itself
// read the arguments through parse_bench_request, so a bad request is answered the same way
// whether or not the benchmark program is present.
#pragma once

#include <cstdint>
#include <vector>

namespace zel::bench {

constexpr int max_sections = 12;

struct section_info {
    const char *name;
    const char *summary;
};

// Options beyond --help, --section and --repeats that a suite takes.
enum suite_option : unsigned { option_sizes = 1u, option_quick = 2u };

struct suite_info {
    const char *name;
    const char *summary;
    const char *details; // the suite's --help text after the usage line
    unsigned options;    // suite_option bits
    int default_repeats;
    section_info sections[max_sections]; // ends at a null name
};

// The suites, ending at a null name.
extern const suite_info suites[];

struct request {
    const suite_info *suite = nullptr;
    unsigned sections = 0;       // bit k: sections[k] runs
    int repeats = 0;             // timed rounds (0 while parsing: not given)
    bool quick = false;          // fewer rounds, smaller batches
    std::vector<int64_t> sizes;  // matrix orders, for suites that take --sizes
    bool runs(int section) const { return (sections >> section) & 1u; }
};

// Parses `zel bench [SUITE [options]]` (argv[0] is "bench"). Returns -1 when *out holds a request
// to run, else the exit code (0 after printing help, 2 after a usage error).
int parse_bench_request(int argc, char **argv, request *out);

// The index of `name` in the suite's sections, or -1.
int find_section(const suite_info &suite, const char *name);

} // namespace zel::bench
