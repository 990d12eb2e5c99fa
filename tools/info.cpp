// `zel info`: the build, the threading layer, the processor topology and the thread settings
// that the library found on this machine.
#include <sched.h>

#include <cstdio>
#include <cstring>

#include "../serv/cbwr_names.hpp"
#include "cli.hpp"
#include "command.hpp"
#include "environment_check.hpp"
#include "zel/runtime.h"
#include "zel/serv.h"

namespace {

constexpr const char *info_summary =
    "show the build, threading layer, processor topology and thread settings in the environment";

void print_help()
{
    std::printf("usage: zel info [--help]\n\n"
                "Prints the library's verbose banner, then what the library found on this machine:\n"
                "the threading layer, processor packages, cores per package, hyper-threading and\n"
                "logical processors (from /proc/cpuinfo, cross-checked by pinning to each CPU of the\n"
                "affinity mask), the thread requests read from ZEL_NUM_THREADS, ZEL_NUM_STRIPES,\n"
                "ZEL_DOMAIN_NUM_THREADS (a list such as \"ZEL_DOMAIN_ALL=2, ZEL_DOMAIN_BLAS=1\") and\n"
                "ZEL_DYNAMIC, MPI processes per node, the reproducibility mode (ZEL_CBWR) and the highest\n"
                "processor frequency.\n\n"
                "A value the library would ignore or read otherwise than written (ZEL_CBWR=bogus,\n"
                "ZEL_NUM_THREADS=two, an unknown key in ZEL_DOMAIN_NUM_THREADS) and a ZEL_ variable the\n"
                "library does not read get a warning on standard error; the exit status stays 0.\n");
}

void print_row(const char *label, const char *value) { std::printf("  %-36s %s\n", label, value); }

void print_count(const char *label, int value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%d", value);
    print_row(label, text);
}

// -1 in the settings record means the environment did not ask.
void print_setting(const char *label, int32_t value)
{
    if (value == -1)
        print_row(label, "not set");
    else
        print_count(label, value);
}

int usable_cpus()
{
    cpu_set_t mask;
    CPU_ZERO(&mask);
    return sched_getaffinity(0, sizeof mask, &mask) == 0 ? CPU_COUNT(&mask) : -1;
}

void print_topology()
{
    std::printf("\nprocessor\n");
    print_count("packages", zel_serv_get_ncpus());
    print_count("cores per package", zel_serv_get_ncorespercpu());
    print_row("hyper-threading", zel_serv_get_ht() == 1 ? "yes" : "no");
    print_count("logical processors", zel_serv_get_nlogicalcores());
    const int usable = usable_cpus();
    if (usable > 0)
        print_count("usable by this process (affinity)", usable);
    const double ghz = zel_serv_get_max_cpu_frequency();
    char text[32];
    std::snprintf(text, sizeof text, "%.2f GHz", ghz);
    print_row("maximum frequency", ghz > 0.0 ? text : "unknown");
}

void print_threading()
{
    std::printf("\nthreading\n");
    char text[64];
    std::snprintf(text, sizeof text, "%s (layer %d)", zel_serv_get_thread_layer() == 1 ? "sequential" : "unknown",
                  zel_serv_get_thread_layer());
    print_row("layer", text);
    print_count("threads per call", zel_serv_get_max_threads());
    print_count("dynamic adjustment (reported)", zel_serv_get_dynamic());
    const int ppn = zel_serv_mpi_get_ppn();
    if (ppn > 0)
        print_count("MPI processes per node", ppn);
    else
        print_row("MPI processes per node", "unknown (no MPI runtime variable gives it)");
}

void print_environment()
{
    zel_thread_settings settings;
    zel_serv_get_thread_settings(&settings);
    std::printf("\nthread requests in the environment (recorded; one thread runs regardless)\n");
    print_setting("all domains (ZEL_NUM_THREADS)", settings.num_threads);
    print_setting("stripes (ZEL_NUM_STRIPES)", settings.num_stripes);
    // The domains are keys of one variable, not variables of their own.
    std::printf("  per domain, keys of ZEL_DOMAIN_NUM_THREADS (ZEL_DOMAIN_ALL sets all domains)\n");
    print_setting("  BLAS (ZEL_DOMAIN_BLAS=n)", settings.domain_blas);
    print_setting("  FFT (ZEL_DOMAIN_FFT=n)", settings.domain_fft);
    print_setting("  VML (ZEL_DOMAIN_VML=n)", settings.domain_vml);
    print_setting("  VARISOL (ZEL_DOMAIN_VARISOL=n)", settings.domain_varisol);
    print_setting("  LAPACK (ZEL_DOMAIN_LAPACK=n)", settings.domain_lapack);
    print_setting("dynamic (ZEL_DYNAMIC)", settings.dynamic);
}

void print_reproducibility()
{
    const int code = zel_serv_cbwr_get(1);
    const char *name = zel::serv::cbwr_mode_name(code);
    char text[64];
    if (name != nullptr)
        std::snprintf(text, sizeof text, "%s", name);
    else
        std::snprintf(text, sizeof text, "code %d", code);
    if (zel_serv_cbwr_get(-1) & zel::serv::cbwr_strict_bit)
        std::strncat(text, ",STRICT", sizeof text - std::strlen(text) - 1);
    std::printf("\nsettings\n");
    print_row("reproducibility (ZEL_CBWR)", text);
    print_row("fast memory manager", zel_serv_get_fast_mm_status() == 0 ? "on" : "off");
    const char *verbose_file = zel_serv_verbose_output_file_mode();
    const bool to_file = verbose_file != nullptr && verbose_file[0] != '\0';
    print_row("verbose output", to_file ? verbose_file : "standard output");
}

int run_info(int argc, char **argv)
{
    using namespace zel::tool;
    static const option options[] = {{"help", no_argument, nullptr, 'h'}, {nullptr, 0, nullptr, 0}};
    option_parser parser("zel info", argc, argv, "h", options);
    for (int code; (code = parser.next()) != -1;) {
        if (code != 'h')
            return exit_usage;
        print_help();
        return exit_ok;
    }
    if (parser.first_operand() < argc)
        return usage_error("zel info", "unexpected argument '%s'", argv[parser.first_operand()]);
    warn_about_environment();
    zel_serv_print_verbose_header(0);
    print_threading();
    print_topology();
    print_environment();
    print_reproducibility();
    return exit_ok;
}

} // namespace

ZEL_TOOL_COMMAND("info", info_summary, run_info);
