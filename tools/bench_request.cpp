// The suites of `zel bench` and the parsing of a benchmark request.
#include "bench_request.hpp"

#include <cstdio>
#include <cstring>

#include "cli.hpp"

namespace zel::bench {

const suite_info suites[] = {
    {"dense", "small dense LU, Cholesky, inverse and solve batches against OpenBLAS",
     "Times strided batches (about 4 MiB of matrices per size) of each routine in s, d, c and z\n"
     "against a plain loop over OpenBLAS's one-matrix routines; the best of several alternating passes.\n",
     option_sizes | option_quick,
     15,
     {{"getrf", "LU with partial pivoting"},
      {"potrf", "Cholesky (lower)"},
      {"getri", "out-of-place inverse from the LU factors"},
      {"getrs", "solve with the LU factors, one right-hand side"},
      {nullptr, nullptr}}},
    {"sparse", "sparse transpose and A·Aᵀ against CSparse (and dsyrk_ for the dense result)",
     "Each section builds its matrices (a 7-point Laplacian on a 100^3 grid, a random 10^6 x 10^6\n"
     "matrix with 10 entries a row) and prints its own table; the whole suite takes minutes.\n",
     0,
     7,
     {{"transpose", "transposed record and kernel vs cs_transpose"},
      {"syrk", "A·Aᵀ sparse result vs cs_multiply(A, cs_transpose(A)), dense result vs dsyrk_"},
      {nullptr, nullptr}}},
    {"solver", "sparse direct solver: analyse, factorise and solve against CHOLMOD, UMFPACK, SuperLU, MUMPS",
     "Times each phase of the solver (double) against its peers, each in a program of its own on the\n"
     "system BLAS (zel-bench-cholmod, -umfpack, -superlu, -mumps, built when their libraries are found):\n"
     "scripts/install-bench-peers.sh installs them and selects single-threaded OpenBLAS. Positive\n"
     "definite matrices against CHOLMOD's supernodal Cholesky (with its own ordering and with zel's);\n"
     "unsymmetric ones (LU) against UMFPACK, SuperLU and MUMPS; symmetric indefinite ones (L·D·Lᵀ)\n"
     "against MUMPS. The test matrices come from ZEL_TEST_MATRICES (by default the folder configured\n"
     "at build time) and get 10x the rounds. ZEL_BENCH_GRID=K (2 to 400, default 100) sizes the\n"
     "generated LU and L·D·Lᵀ problems: K^3, (10K)^2 and (5K)^2 grids; at 100 the 3-D LU runs one\n"
     "round and takes zel about 13 GiB, its peers more (K = 70 fits them on 24 GiB). Each peer may use\n"
     "85% of the memory free when it starts and ZEL_BENCH_PEER_MINUTES (default 30) of processor time.\n",
     0,
     3,
     {{"laplace3d", "7-point Laplacian on a 60^3 grid"},
      {"laplace2d", "5-point Laplacian on a 1000^2 grid"},
      {"matrices", "the real positive definite test matrices (494_bus, 1138_bus, bcsstk13, ani4)"},
      {"unsym3d", "LU: convection-diffusion, 7-point upwind, cell Peclet 10, on a 100^3 grid"},
      {"unsym2d", "LU: convection-diffusion, 5-point upwind, cell Peclet 10, on a 1000^2 grid"},
      {"unsym_matrices", "LU: the 13 real unsymmetric test matrices (west0479, ..., sherman3)"},
      {"kkt", "L·D·Lᵀ: saddle point [[H, Bᵀ], [B, 0]], H a 500^2-grid Laplacian, 62,500 constraints"},
      {"indef_matrices", "L·D·Lᵀ: hangGlider_2, tumorAntiAngiogenesis_2, reorientation_1"},
      {"onerhs", "one right-hand side: the layer's blkslv_ll kernels vs the core's block sweeps, GB/s"},
      {nullptr, nullptr}}},
    {nullptr, nullptr, nullptr, 0, 0, {{nullptr, nullptr}}},
};

namespace {

constexpr int64_t largest_size = 1024; // a batch of 8 such complex matrices is already 128 MiB
constexpr int most_sizes = 32;
constexpr int64_t most_repeats = 1000;
const std::vector<int64_t> default_sizes = {4, 8, 16, 32, 64, 128};

enum option_code { code_section = 256, code_repeats, code_sizes, code_quick };

const option suite_options[] = {
    {"help", no_argument, nullptr, 'h'},
    {"section", required_argument, nullptr, code_section},
    {"repeats", required_argument, nullptr, code_repeats},
    {"sizes", required_argument, nullptr, code_sizes},
    {"quick", no_argument, nullptr, code_quick},
    {nullptr, 0, nullptr, 0},
};

const suite_info *find_suite(const char *name)
{
    for (const suite_info *suite = suites; suite->name != nullptr; ++suite)
        if (std::strcmp(suite->name, name) == 0)
            return suite;
    return nullptr;
}

void print_suite_usage(FILE *out, const suite_info &suite)
{
    std::fprintf(out, "usage: zel bench %s [--section NAME[,NAME...]] [--repeats N]%s%s\n", suite.name,
                 suite.options & option_sizes ? " [--sizes N[,N...]]" : "",
                 suite.options & option_quick ? " [--quick]" : "");
}

void print_sections(FILE *out, const suite_info &suite, const char *indent)
{
    for (const section_info *section = suite.sections; section->name != nullptr; ++section)
        std::fprintf(out, "%s%-14s %s\n", indent, section->name, section->summary);
}

void print_suite_help(const suite_info &suite)
{
    print_suite_usage(stdout, suite);
    std::printf("\nzel bench %s: %s.\n", suite.name, suite.summary);
    std::printf("%s\nsections (all by default):\n", suite.details);
    print_sections(stdout, suite, "  ");
    std::printf("\noptions:\n"
                "  --section NAME[,NAME...]  run only these sections (may be given more than once)\n"
                "  --repeats N               timed rounds per measurement, 1 to %lld (default %d)\n",
                static_cast<long long>(most_repeats), suite.default_repeats);
    if (suite.options & option_sizes) {
        std::printf("  --sizes N[,N...]          matrix orders, each 1 to %lld (default ",
                    static_cast<long long>(largest_size));
        for (size_t k = 0; k < default_sizes.size(); ++k)
            std::printf("%s%lld", k ? "," : "", static_cast<long long>(default_sizes[k]));
        std::printf(")\n");
    }
    if (suite.options & option_quick)
        std::printf("  --quick                   3 rounds on batches of a quarter the size\n");
    std::printf("  -h, --help                this text\n"
                "\nTables go to standard output; when standard error is a terminal, progress lines go there.\n");
}

void print_listing(FILE *out)
{
    std::fprintf(out, "usage: zel bench SUITE [options]\n\n"
                      "Measures the library against a peer in the same process (zel-bench, built with\n"
                      "ZEL_BUILD_BENCH=ON). Suites and their sections:\n");
    for (const suite_info *suite = suites; suite->name != nullptr; ++suite) {
        std::fprintf(out, "\n  %-8s %s\n", suite->name, suite->summary);
        print_sections(out, *suite, "    ");
    }
    std::fprintf(out, "\nRun 'zel bench SUITE --help' for a suite's options.\n");
}

// Adds the sections named in a comma-separated list; false (after the message) for an unknown one.
bool add_sections(const char *command, const suite_info &suite, const char *list, unsigned &sections)
{
    char name[32];
    for (const char *cursor = list;;) {
        const size_t length = std::strcspn(cursor, ",");
        std::snprintf(name, sizeof name, "%.*s", static_cast<int>(length), cursor);
        const int index = length < sizeof name ? find_section(suite, name) : -1;
        if (index < 0) {
            std::fprintf(stderr, "%s: unknown section '%.*s'; the %s suite has:\n", command, static_cast<int>(length),
                         cursor, suite.name);
            print_sections(stderr, suite, "  ");
            std::fprintf(stderr, "Try '%s --help'.\n", command);
            return false;
        }
        sections |= 1u << index;
        if (cursor[length] == '\0')
            return true;
        cursor += length + 1;
    }
}

bool suite_takes(const char *command, const suite_info &suite, unsigned option, const char *spelling)
{
    if (suite.options & option)
        return true;
    zel::tool::usage_error(command, "option '%s' does not apply to the %s suite", spelling, suite.name);
    return false;
}

// Reads the suite's options into *out; -1 to run, else the exit code.
int parse_suite_options(const char *command, int argc, char **argv, request *out)
{
    using namespace zel::tool;
    const suite_info &suite = *out->suite;
    option_parser parser(command, argc, argv, "h", suite_options);
    for (int code; (code = parser.next()) != -1;) {
        int64_t number = 0;
        switch (code) {
        case 'h':
            print_suite_help(suite);
            return exit_ok;
        case code_section:
            if (!add_sections(command, suite, parser.value(), out->sections))
                return exit_usage;
            break;
        case code_repeats:
            if (!option_integer(parser, 1, most_repeats, number))
                return exit_usage;
            out->repeats = static_cast<int>(number);
            break;
        case code_sizes:
            if (!suite_takes(command, suite, option_sizes, parser.spelling()))
                return exit_usage;
            if (!parse_integer_list(parser.value(), 1, largest_size, most_sizes, out->sizes))
                return usage_error(command, "--sizes wants up to %d matrix orders from 1 to %lld, separated by "
                                            "commas, not '%s'", most_sizes, static_cast<long long>(largest_size),
                                   parser.value());
            break;
        case code_quick:
            if (!suite_takes(command, suite, option_quick, parser.spelling()))
                return exit_usage;
            out->quick = true;
            break;
        default:
            return exit_usage;
        }
    }
    if (parser.first_operand() < argc)
        return usage_error(command, "unexpected argument '%s'", argv[parser.first_operand()]);
    return -1;
}

} // namespace

int find_section(const suite_info &suite, const char *name)
{
    for (int k = 0; suite.sections[k].name != nullptr; ++k)
        if (std::strcmp(suite.sections[k].name, name) == 0)
            return k;
    return -1;
}

int parse_bench_request(int argc, char **argv, request *out)
{
    using namespace zel::tool;
    static const option bench_options[] = {{"help", no_argument, nullptr, 'h'}, {nullptr, 0, nullptr, 0}};
    option_parser parser("zel bench", argc, argv, "+h", bench_options);
    for (int code; (code = parser.next()) != -1;) {
        if (code != 'h')
            return exit_usage;
        print_listing(stdout);
        return exit_ok;
    }
    const int first = parser.first_operand();
    if (first >= argc) {
        std::fprintf(stderr, "zel bench: name a suite.\n\n");
        print_listing(stderr);
        return exit_usage;
    }
    const suite_info *suite = find_suite(argv[first]);
    if (suite == nullptr) {
        std::fprintf(stderr, "zel bench: unknown suite '%s'\n\n", argv[first]);
        print_listing(stderr);
        return exit_usage;
    }
    out->suite = suite;
    char command[64];
    std::snprintf(command, sizeof command, "zel bench %s", suite->name);
    const int status = parse_suite_options(command, argc - first, argv + first, out);
    if (status != -1)
        return status;
    if (out->sections == 0)
        for (int k = 0; suite->sections[k].name != nullptr; ++k)
            out->sections |= 1u << k;
    if (out->repeats == 0)
        out->repeats = out->quick ? 3 : suite->default_repeats;
    if (out->sizes.empty() && (suite->options & option_sizes))
        out->sizes = default_sizes;
    return -1;
}

} // namespace zel::bench
