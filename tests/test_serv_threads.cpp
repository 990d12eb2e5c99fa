// Thread queries, the environment scan, processes per node and the topology probe.
#include <gtest/gtest.h>
#include <sched.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "alloc_fault.hpp"
#include "test_serv_child.hpp"
#include "zel/serv.h"

using zel::test::environment;
using zel::test::run_in_child;

namespace {

std::string settings_text(const zel_thread_settings &s)
{
    char text[160];
    std::snprintf(text, sizeof text, "%d %d %d %d %d %d %d %d", s.num_threads, s.num_stripes, s.domain_blas,
                  s.domain_fft, s.domain_vml, s.domain_varisol, s.domain_lapack, s.dynamic);
    return text;
}

// The settings a fresh process records under `env`.
std::string recorded_settings(const environment &env)
{
    const auto child = run_in_child(env, [] {
        zel_thread_settings s;
        zel_serv_get_thread_settings(&s);
        std::printf("%s", settings_text(s).c_str());
        return 0;
    });
    EXPECT_EQ(child.exit_code, 0) << child.err;
    return child.out;
}

int first_ppn(const environment &env)
{
    const auto child = run_in_child(env, [] {
        std::printf("%d", zel_serv_mpi_get_ppn());
        return 0;
    });
    EXPECT_EQ(child.exit_code, 0) << child.err;
    return std::atoi(child.out.c_str());
}

struct scan_case {
    environment env;
    zel_thread_settings expected;
};

constexpr zel_thread_settings unset = {-1, -1, -1, -1, -1, -1, -1, 1};

zel_thread_settings with(zel_thread_settings base, int32_t zel_thread_settings::*field, int32_t value)
{
    base.*field = value;
    return base;
}

} // namespace

TEST(ThreadQueries, AnswerOneThreadWhateverTheEnvironment)
{
    const auto child = run_in_child({{"ZEL_NUM_THREADS", "8"}, {"ZEL_DYNAMIC", "false"}, {"OMP_NUM_THREADS", "4"}},
                                    [] {
                                        zel_serv_set_num_threads(8);
                                        zel_serv_set_dynamic(0);
                                        zel_serv_set_num_stripes(3);
                                        zel_serv_mpi_safe();
                                        int ones = zel_serv_get_max_threads() + zel_serv_get_dynamic() +
                                                   zel_serv_get_num_stripes() + zel_serv_get_thread_layer() +
                                                   zel_serv_set_num_threads_local(16) +
                                                   zel_serv_domain_set_num_threads(4, 1);
                                        for (int domain = 0; domain < 5; ++domain)
                                            ones += zel_serv_domain_get_max_threads(domain);
                                        std::printf("%d %d", ones, zel_serv_omp_in_parallel());
                                        return 0;
                                    });
    EXPECT_EQ(child.exit_code, 0) << child.err;
    EXPECT_EQ(child.out, "11 0");
}

TEST(EnvironmentScan, PerVariableRules)
{
    using S = zel_thread_settings;
    const std::vector<scan_case> cases = {
        {{}, unset},
        {{{"ZEL_NUM_THREADS", "6"}}, with(unset, &S::num_threads, 6)},
        {{{"ZEL_NUM_THREADS", "abc"}}, with(unset, &S::num_threads, 1)},
        {{{"ZEL_NUM_THREADS", "-3"}}, with(unset, &S::num_threads, 1)},
        {{{"ZEL_NUM_THREADS", "0"}}, unset},
        {{{"ZEL_NUM_THREADS", std::string(300, '9')}}, with(unset, &S::num_threads, 2147483647)},
        {{{"ZEL_NUM_STRIPES", "abc"}}, unset},
        {{{"ZEL_NUM_STRIPES", "0"}}, with(unset, &S::num_stripes, 0)},
        {{{"ZEL_NUM_STRIPES", "5"}}, with(unset, &S::num_stripes, 5)},
        {{{"ZEL_DYNAMIC", "False"}}, unset},
        {{{"ZEL_DYNAMIC", "0"}}, unset},
        {{{"ZEL_DYNAMIC", "falsey"}}, unset},
        {{{"ZEL_DYNAMIC", "false"}}, with(unset, &S::dynamic, 0)},
        {{{"ZEL_DYNAMIC", "FALSE"}}, with(unset, &S::dynamic, 0)},
        {{{"ZEL_DYNAMIC", " \"'false' rest"}}, with(unset, &S::dynamic, 0)},
        {{{"OMP_NUM_THREADS", "7"}, {"ZMPI_THREAD_LEVEL", "3"}}, unset},
    };
    for (const scan_case &c : cases) {
        std::string label;
        for (const auto &[name, value] : c.env)
            label += std::string(name) + "=" + value.substr(0, 20) + " ";
        EXPECT_EQ(recorded_settings(c.env), settings_text(c.expected)) << label;
    }
}

TEST(EnvironmentScan, DomainList)
{
    using S = zel_thread_settings;
    auto domains = [](const std::string &list) { return environment{{"ZEL_DOMAIN_NUM_THREADS", list}}; };
    const std::vector<scan_case> cases = {
        {domains("ZEL_DOMAIN_BLAS=4;ZEL_DOMAIN_LAPACK x"),
         with(with(unset, &S::domain_blas, 4), &S::domain_lapack, 1)},
        {domains("ZEL_DOMAIN_ALL=2, ZEL_DOMAIN_BLAS=1"), with(with(unset, &S::num_threads, 2), &S::domain_blas, 1)},
        {domains("\"ZEL_DOMAIN_VML=7:ZEL_DOMAIN_VARISOL = 3\""),
         with(with(unset, &S::domain_vml, 7), &S::domain_varisol, 3)},
        {domains("ZEL_DOMAIN_FFT=3,ZEL_DOMAIN_FFT=5"), with(unset, &S::domain_fft, 3)},
        {domains("ZEL_DOMAIN_FFT"), with(unset, &S::domain_fft, 1)},
        {domains("ZEL_DOMAIN_FFT=,ZEL_DOMAIN_VML=2"), with(with(unset, &S::domain_fft, 1), &S::domain_vml, 2)},
        {domains("ZEL_DOMAIN_VARISOL=0;zel_domain_blas=2;ZEL_DOMAIN_OTHER=5;ZEL_DOMAIN_LAPACK=9"),
         with(unset, &S::domain_lapack, 9)},
        {domains("=4,ZEL_DOMAIN_FFT=2"), unset}, // an empty name ends the list
        {domains(std::string(5000, 'A')), unset},
        {domains([] {
             std::string list;
             while (list.size() < 5000)
                 list += "ZEL_DOMAIN_BLAS=2,";
             return list;
         }()),
         with(unset, &S::domain_blas, 2)},
    };
    for (const scan_case &c : cases)
        EXPECT_EQ(recorded_settings(c.env), settings_text(c.expected)) << c.env[0].second.substr(0, 60);

    environment both = domains("ZEL_DOMAIN_ALL=2");
    both.push_back({"ZEL_NUM_THREADS", "3"});
    EXPECT_EQ(recorded_settings(both), settings_text(with(unset, &S::num_threads, 3)));
}

TEST(EnvironmentScan, RecordedOncePerProcess)
{
    const auto child = run_in_child({{"ZEL_NUM_THREADS", "4"}}, [] {
        zel_thread_settings before, after;
        zel_serv_get_thread_settings(&before);
        setenv("ZEL_NUM_THREADS", "9", 1);
        setenv("ZEL_NUM_STRIPES", "2", 1);
        zel_serv_get_thread_settings(&after);
        zel_serv_get_thread_settings(nullptr);
        std::printf("%s|%s", settings_text(before).c_str(), settings_text(after).c_str());
        return 0;
    });
    EXPECT_EQ(child.exit_code, 0) << child.err;
    const std::string expected = settings_text(with(unset, &zel_thread_settings::num_threads, 4));
    EXPECT_EQ(child.out, expected + "|" + expected);
}

TEST(ProcessesPerNode, SourcesInOrder)
{
    struct ppn_case {
        environment env;
        int expected;
    };
    const std::vector<ppn_case> cases = {
        {{}, -1},
        {{{"ZEL_MPI_PPN", "6"}, {"MPI_LOCALNRANKS", "4"}}, 6},
        {{{"ZEL_MPI_PPN", "0"}, {"MPI_LOCALNRANKS", "4"}}, 4},
        {{{"ZEL_MPI_PPN", "6x"}, {"ZMPI_NUMBER_OF_MPI_PROCESSES_PER_NODE", "3"}}, 3},
        {{{"ZEL_MPI_PPN", "-2"}, {"OMPI_COMM_WORLD_LOCAL_SIZE", "5"}}, 5},
        {{{"ZEL_MPI_PPN", std::string(400, '7')}, {"MPI_LOCALNRANKS", "2"}}, 2},
        {{{"ZMPI_PIN_MAPPING", "3:0,1,2"}, {"MPI_LOCALNRANKS", "7"}}, 3},
        {{{"ZMPI_PIN_MAPPING", "3"}, {"MPI_LOCALNRANKS", "7"}}, 7},
        {{{"ZMPI_PIN_MAPPING", "3"}}, -1},
        {{{"ZMPI_PIN_MAPPING", "0:1"}, {"OMPI_COMM_WORLD_LOCAL_SIZE", "2"}}, 2},
        {{{"ZMPI_PIN_MAPPING", "-3:1"}}, -1},
        // A count past 32 bits is malformed, as it is for ZEL_MPI_PPN: the next variable decides.
        {{{"ZMPI_PIN_MAPPING", "99999999999999:0,1"}, {"MPI_LOCALNRANKS", "7"}}, 7},
        {{{"ZMPI_PIN_MAPPING", "2147483648:0,1"}}, -1},
        {{{"MPI_LOCALNRANKS", "0"}}, -1},
        {{{"MPI_LOCALNRANKS", "abc"}}, -1},
        {{{"MPI_LOCALNRANKS", " 8"}}, 8},
    };
    for (const ppn_case &c : cases)
        EXPECT_EQ(first_ppn(c.env), c.expected) << c.env.size() << " " << (c.env.empty() ? "" : c.env[0].first);
}

TEST(ProcessesPerNode, CachedForTheProcessIncludingMinusOne)
{
    const auto child = run_in_child({{"ZEL_MPI_PPN", "2"}}, [] {
        const int first = zel_serv_mpi_get_ppn();
        setenv("ZEL_MPI_PPN", "9", 1);
        std::printf("%d %d", first, zel_serv_mpi_get_ppn());
        return 0;
    });
    EXPECT_EQ(child.exit_code, 0) << child.err;
    EXPECT_EQ(child.out, "2 2");
    const auto unset_child = run_in_child({}, [] {
        const int first = zel_serv_mpi_get_ppn();
        setenv("MPI_LOCALNRANKS", "4", 1);
        std::printf("%d %d", first, zel_serv_mpi_get_ppn());
        return 0;
    });
    EXPECT_EQ(unset_child.exit_code, 0) << unset_child.err;
    EXPECT_EQ(unset_child.out, "-1 -1");
    // The topology probe's scan is what fills the cache.
    const auto probe_child = run_in_child({{"ZEL_MPI_PPN", "2"}}, [] {
        zel_serv_get_ht();
        setenv("ZEL_MPI_PPN", "9", 1);
        std::printf("%d", zel_serv_mpi_get_ppn());
        return 0;
    });
    EXPECT_EQ(probe_child.exit_code, 0) << probe_child.err;
    EXPECT_EQ(probe_child.out, "2");
}

namespace {

// An independent reading of /proc/cpuinfo: processors, packages, first block's cores and siblings.
struct cpuinfo_oracle {
    int processors = 0, cores = 0, siblings = 0;
    std::set<std::string> packages;
};

cpuinfo_oracle read_cpuinfo()
{
    cpuinfo_oracle o;
    std::FILE *file = std::fopen("/proc/cpuinfo", "r");
    if (file == nullptr)
        return o;
    char line[4096];
    while (std::fgets(line, sizeof line, file)) {
        const std::string text = line;
        const auto colon = text.find(':');
        const std::string value = colon == std::string::npos ? "" : text.substr(colon + 1);
        if (text.rfind("processor", 0) == 0)
            ++o.processors;
        else if (text.rfind("physical id", 0) == 0)
            o.packages.insert(std::to_string(std::atoi(value.c_str())));
        else if (o.processors == 1 && text.rfind("cpu cores", 0) == 0)
            o.cores = std::atoi(value.c_str());
        else if (o.processors == 1 && text.rfind("siblings", 0) == 0)
            o.siblings = std::atoi(value.c_str());
    }
    std::fclose(file);
    return o;
}

struct topology {
    int ncpus, ncorespercpu, ht, nlogical;
};

topology parse_topology(const std::string &text)
{
    topology t{-9, -9, -9, -9};
    std::sscanf(text.c_str(), "%d %d %d %d", &t.ncpus, &t.ncorespercpu, &t.ht, &t.nlogical);
    return t;
}

int print_topology()
{
    std::printf("%d %d %d %d", zel_serv_get_ncpus(), zel_serv_get_ncorespercpu(), zel_serv_get_ht(),
                zel_serv_get_nlogicalcores());
    return 0;
}

cpu_set_t current_affinity()
{
    cpu_set_t mask;
    CPU_ZERO(&mask);
    sched_getaffinity(0, sizeof mask, &mask);
    return mask;
}

} // namespace

TEST(Topology, AgreesWithCpuinfoAndAffinity)
{
    const auto child = run_in_child({}, print_topology);
    ASSERT_EQ(child.exit_code, 0) << child.err;
    const topology t = parse_topology(child.out);
    const cpuinfo_oracle o = read_cpuinfo();
    cpu_set_t mask = current_affinity();
    const int usable = CPU_COUNT(&mask);
    const int p = o.processors, s = static_cast<int>(o.packages.size()), c = o.cores, th = o.siblings;
    const bool file_consistent = p > 0 && s > 0 && c > 0 && th > 0 &&
                                 ((c * s == p && c == th) || (th * s == p && c != th));
    if (file_consistent) {
        const int cores = c == th ? p : c * s;
        EXPECT_EQ(t.ncpus, s);
        EXPECT_EQ(t.ncorespercpu, cores / s);
        EXPECT_EQ(t.ht, cores != p ? 1 : 0);
        EXPECT_EQ(t.nlogical, p);
        EXPECT_GE(t.nlogical, usable);
    } else {
        // Without a consistent file the counts come from pinning to each usable CPU.
        EXPECT_EQ(t.nlogical, usable);
        EXPECT_GE(t.ncpus, 1);
        EXPECT_GE(t.ncorespercpu, 1);
        EXPECT_LE(t.ncpus * t.ncorespercpu, t.nlogical);
    }
    EXPECT_TRUE(t.ht == 0 || t.ht == 1);
}

TEST(Topology, ProbeRestoresTheAffinityMask)
{
    // Once with the inherited mask, once narrowed to the last usable CPU.
    for (bool narrow : {false, true}) {
        const auto child = run_in_child({}, [narrow] {
            cpu_set_t before = current_affinity();
            if (narrow) {
                int last = -1;
                for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu)
                    if (CPU_ISSET(cpu, &before))
                        last = cpu;
                CPU_ZERO(&before);
                CPU_SET(last, &before);
                if (sched_setaffinity(0, sizeof before, &before) != 0)
                    return 5;
            }
            const int ncpus = zel_serv_get_ncpus();
            cpu_set_t after = current_affinity();
            return CPU_EQUAL(&before, &after) && ncpus >= 1 ? 0 : 1;
        });
        EXPECT_EQ(child.exit_code, 0) << "narrowed: " << narrow;
    }
}

TEST(Topology, ProbedOnceEvenUnderConcurrentFirstQueries)
{
    const auto child = run_in_child({}, [] {
        std::string seen[4];
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&seen, i] {
                char text[64];
                std::snprintf(text, sizeof text, "%d %d %d %d", zel_serv_get_ncpus(), zel_serv_get_ncorespercpu(),
                              zel_serv_get_ht(), zel_serv_get_nlogicalcores());
                seen[i] = text;
            });
        for (std::thread &t : threads)
            t.join();
        // Changing the affinity afterwards changes nothing: the answer is cached.
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(0, &one);
        sched_setaffinity(0, sizeof one, &one);
        char later[64];
        std::snprintf(later, sizeof later, "%d %d %d %d", zel_serv_get_ncpus(), zel_serv_get_ncorespercpu(),
                      zel_serv_get_ht(), zel_serv_get_nlogicalcores());
        for (const std::string &s : seen)
            if (s != seen[0] || s != later)
                return 1;
        std::printf("%s", later);
        return 0;
    });
    EXPECT_EQ(child.exit_code, 0) << child.out;
    const auto single = run_in_child({}, print_topology);
    EXPECT_EQ(child.out, single.out);
}

TEST(Topology, ScratchFailureFallsBackToOneOfEverything)
{
    // The census takes three arrays; whichever fails, nothing leaks and the answer is the fallback.
    for (int k = 0; k < 3; ++k) {
        const auto child = run_in_child({}, [k] {
            const cpu_set_t before = current_affinity();
            int live = 0;
            {
                zel::test::allocator_probe probe;
                probe.fail_at(k);
                print_topology();
                live = static_cast<int>(probe.live());
            }
            const cpu_set_t after = current_affinity();
            return live == 0 && CPU_EQUAL(&before, &after) ? 0 : 1;
        });
        EXPECT_EQ(child.exit_code, 0) << "failing allocation " << k;
        EXPECT_EQ(child.out, "1 1 0 1") << "failing allocation " << k;
    }
}
