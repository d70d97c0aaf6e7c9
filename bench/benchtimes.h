// SPDX-License-Identifier: MIT
// What the benchmark programs share: the median of repetitions, and a console reporter that
// keeps the wall-clock and CPU time per iteration of every repetition for ratios of medians
// (CPU time is the steadier figure on a shared machine).
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace tessal::bench {

inline double Median(std::vector<double> v)
{
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    const std::size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

class TTimesReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.run_type != Run::RT_Iteration || run.iterations <= 0)
                continue;
            const std::string key = run.run_name.function_name + "/" + run.run_name.args;
            const double n = double(run.iterations);
            m_Real[key].push_back(run.real_accumulated_time / n);
            m_Cpu[key].push_back(run.cpu_accumulated_time / n);
        }
    }

    bool Has(const std::string &key) const { return m_Real.contains(key); }
    std::size_t Count(const std::string &key) const { return m_Real.at(key).size(); }
    // Medians in seconds per iteration; 0 for a benchmark that did not run.
    double Real(const std::string &key) const { return Has(key) ? Median(m_Real.at(key)) : 0; }
    double Cpu(const std::string &key) const { return Has(key) ? Median(m_Cpu.at(key)) : 0; }

private:
    std::map<std::string, std::vector<double>> m_Real, m_Cpu;
};

} // namespace tessal::bench
