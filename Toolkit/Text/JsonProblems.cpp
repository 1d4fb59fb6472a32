#include "Toolkit/Text/JsonProblems.h"

#include <cstdio>
#include <utility>

namespace qe::tool {

namespace {

constexpr std::size_t kMaximumProblems = 100;

/// Keeps what a file holds from breaking the lines of a message.
std::string OnOneLine(const std::string& text)
{
    std::string line;
    for (const char letter : text) {
        const auto byte = static_cast<unsigned char>(letter);
        if (byte >= 0x20 && byte != 0x7F) {
            line += letter;
            continue;
        }
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(byte));
        line += escaped;
    }
    return line;
}

/// Nobody reads the middle of a long pointer.
std::string Shorten(const std::string& pointer)
{
    constexpr std::size_t kLongest = 256;
    constexpr std::size_t kEdge = 80;
    if (pointer.size() <= kLongest)
        return pointer;
    // A character of several bytes stays whole.
    const auto isWithin = [&pointer](std::size_t position) {
        return (static_cast<unsigned char>(pointer[position]) & 0xC0U) == 0x80U;
    };
    std::size_t head = kEdge;
    while (isWithin(head))
        --head;
    std::size_t tail = pointer.size() - kEdge;
    while (tail < pointer.size() && isWithin(tail))
        ++tail;
    return pointer.substr(0, head) + "..." + pointer.substr(tail);
}

} // namespace

void JsonProblems::Add(const std::string& pointer, const std::string& text,
                       std::vector<std::string> nearestNames)
{
    MarkReported(pointer);
    if (mProblems.size() == kMaximumProblems) {
        ++mLeftOut;
        return;
    }
    for (std::string& name : nearestNames)
        name = OnOneLine(name);
    mProblems.push_back({.pointer = pointer,
                         .problem = {ToPlace(pointer), OnOneLine(text), std::move(nearestNames)}});
}

std::string JsonProblems::ToPlace(const std::string& pointer) const
{
    const std::string shown = Shorten(OnOneLine(pointer));
    return mDocumentName.empty() ? shown : mDocumentName + '#' + shown;
}

std::string JsonProblems::ToPlace(const std::string& pointer, std::size_t line) const
{
    std::string place = ToPlace(pointer);
    if (!mDocumentName.empty())
        place.insert(mDocumentName.size(), ':' + std::to_string(line));
    return place;
}

std::map<std::string, std::string>
JsonProblems::FindPlaces(const std::set<std::string>& pointers) const
{
    const DocumentLines lines = mFindLines ? mFindLines(pointers) : DocumentLines();
    std::map<std::string, std::string> places;
    for (const std::string& pointer : pointers) {
        const auto line = lines.find(pointer);
        places.emplace(pointer,
                       line == lines.end() ? ToPlace(pointer) : ToPlace(pointer, line->second));
    }
    return places;
}

void JsonProblems::ThrowIfAny() const
{
    if (mProblems.empty())
        return;
    DocumentLines lines;
    if (mFindLines)
        lines = mFindLines(mReported);
    std::vector<InputProblem> problems;
    for (const Problem& kept : mProblems) {
        problems.push_back(kept.problem);
        if (const auto line = lines.find(kept.pointer); line != lines.end())
            problems.back().place = ToPlace(kept.pointer, line->second);
    }
    if (mLeftOut > 0)
        problems.push_back({mDocumentName, "further mistakes: " + std::to_string(mLeftOut)});
    throw InputError(std::move(problems));
}

std::string ChildPointer(const std::string& pointer, std::string_view key)
{
    std::string child;
    child.reserve(pointer.size() + 1 + key.size());
    child += pointer;
    child += '/';
    for (const char letter : key) {
        if (letter == '~')
            child += "~0";
        else if (letter == '/')
            child += "~1";
        else
            child += letter;
    }
    return child;
}

std::string ChildPointer(const std::string& pointer, std::size_t index)
{
    return pointer + '/' + std::to_string(index);
}

} // namespace qe::tool
