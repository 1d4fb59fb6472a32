#include "Toolkit/Answers/CheckPipelines.h"

#include "Toolkit/Check/CheckReport.h"
#include "Toolkit/Text/Markup.h"

#include <cstddef>
#include <ostream>

namespace qe::tool {

namespace {

/// What the test cases of a report came to.
struct JunitCounts
{
    std::size_t tests = 0;
    std::size_t failures = 0;
    std::size_t skipped = 0;
};

class JunitWriter
{
public:
    JunitWriter(std::ostream& out, const PipelineContext& context) : mOut(out), mContext(context) {}

    void Write(const CheckReport& report)
    {
        JunitCounts all;
        for (const RuleReport& rule : report.rules) {
            const JunitCounts counts = Count(rule);
            all.tests += counts.tests;
            all.failures += counts.failures;
            all.skipped += counts.skipped;
        }
        mOut << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"qerefine check\""
             << Attributes(all) << ">\n";
        for (const RuleReport& rule : report.rules)
            Write(rule);
        mOut << "</testsuites>\n";
    }

private:
    [[nodiscard]] bool Fails(const RuleReport& rule) const
    {
        return mContext.failOn && rule.severity >= *mContext.failOn;
    }

    /// A rule without findings is one test that passes.
    [[nodiscard]] JunitCounts Count(const RuleReport& rule) const
    {
        const std::size_t kept = rule.found.findings.size();
        const std::size_t accepted = rule.CountAccepted();
        return {.tests = kept == 0 ? 1 : kept,
                .failures = Fails(rule) ? kept - accepted : 0,
                .skipped = accepted};
    }

    static std::string Attributes(const JunitCounts& counts)
    {
        return " tests=\"" + std::to_string(counts.tests) + "\" failures=\"" +
               std::to_string(counts.failures) + "\" errors=\"0\" skipped=\"" +
               std::to_string(counts.skipped) + '"';
    }

    void Write(const RuleReport& rule)
    {
        mOut << "  <testsuite name=\"" << EscapeMarkup(rule.code) << '"' << Attributes(Count(rule))
             << ">\n";
        if (rule.found.findings.empty())
            mOut << "    <testcase name=\"no finding\" classname=\"" << ClassName() << "\"/>\n";
        for (const Finding& finding : rule.found.findings)
            Write(rule, finding);
        mOut << "  </testsuite>\n";
    }

    void Write(const RuleReport& rule, const Finding& finding)
    {
        mOut << "    <testcase name=\"" << EscapeMarkup(finding.id) << "\" classname=\""
             << ClassName() << "\">\n";
        if (finding.accepted)
            mOut << "      <skipped message=\"accepted: " << EscapeMarkup(finding.accepted->reason)
                 << "\"/>\n";
        else if (Fails(rule))
            mOut << "      <failure type=\"" << ToText(rule.severity) << "\" message=\""
                 << EscapeMarkup(finding.text) << "\">" << Details(finding) << "</failure>\n";
        else
            mOut << "      <system-out>" << EscapeMarkup(finding.text) << '\n'
                 << Details(finding) << "</system-out>\n";
        mOut << "    </testcase>\n";
    }

    static std::string Details(const Finding& finding)
    {
        std::string text;
        for (const CheckedPath& path : finding.paths)
            text += EscapeMarkup(path.text) + '\n';
        return text + EscapeMarkup(finding.advice);
    }

    [[nodiscard]] std::string ClassName() const { return EscapeMarkup(mContext.modelName); }

    std::ostream& mOut;
    const PipelineContext& mContext;
};

} // namespace

void WriteJunit(std::ostream& out, const CheckReport& report, const PipelineContext& context)
{
    JunitWriter(out, context).Write(report);
}

} // namespace qe::tool
