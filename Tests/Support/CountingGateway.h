#ifndef TESTS_SUPPORT_COUNTINGGATEWAY_H
#define TESTS_SUPPORT_COUNTINGGATEWAY_H

#include "Engine/Expression/ReferenceResolver.h"
#include "Engine/Model/ModelGateway.h"
#include "Engine/Model/ObjectRecord.h"
#include "amdi_gateway.h"
#include "amdi_object.h"

#include <cstddef>
#include <deque>
#include <exception>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace qe::test {

/// What is thrown by what was told to fail.
class ToldFailure : public std::exception
{};

/// Counts calls, and lets one fail.
class Countdown
{
public:
    /// Makes the n-th call from now throw a ToldFailure, counted from 1; 0: none.
    void FailAtCall(std::size_t n) { mFailAt = n == 0 ? 0 : mCalls + n; }
    void Count()
    {
        if (++mCalls == mFailAt)
            throw ToldFailure();
    }
    [[nodiscard]] std::size_t GetCallCount() const { return mCalls; }
    /// Returns whether the failure that was asked for has come.
    [[nodiscard]] bool HasFailed() const { return mFailAt != 0 && mCalls >= mFailAt; }

private:
    std::size_t mCalls = 0;
    std::size_t mFailAt = 0;
};

/// Passes every call on to another gateway and counts it. Single objects can be put in the place
/// of the model's, which shows the refiner what no checked model has (cycles, missing ends,
/// objects of another class), and one call can be made to fail.
class CountingGateway : public amdi_gateway, public qe::expression::ReferenceResolver
{
public:
    /// Refers to `next`, which must outlive this gateway.
    explicit CountingGateway(qe::model::ModelGateway& next) : mNext(next) {}

    [[nodiscard]] amdi_object* GetObject(const amd_id& id) override;
    [[nodiscard]] I18NLocale GetLocale(const amd_id& id) override;
    [[nodiscard]] amd_id GetQualifierId(amd_id id) override;
    /// Is not counted.
    [[nodiscard]] std::optional<qe::expression::ResolvedReference>
    ResolveReference(const std::vector<I18NString>& names) override;

    /// Puts an object made from the record in the place of `id`; its own id may differ.
    void Replace(const amd_id& id, const qe::model::ObjectRecord& record);
    /// Puts an object made from the record in the place of the record's id.
    void Replace(const qe::model::ObjectRecord& record) { Replace(record.id, record); }
    /// Lets there be no object of that id.
    void Hide(const amd_id& id);
    /// Lets there be no object at all after so many calls.
    void LoseAllAfter(std::size_t count) { mCallsWithObjects = count; }

    /// Counts the calls of all three operations.
    Countdown calls;

private:
    qe::model::ModelGateway& mNext;
    std::deque<qe::model::ObjectRecord> mRecords;
    std::map<amd_id, std::unique_ptr<amdi_object>> mReplacements;
    std::size_t mCallsWithObjects = std::numeric_limits<std::size_t>::max();
};

} // namespace qe::test

#endif
