#ifndef TESTS_TOOLS_HOSTILEMODEL_H
#define TESTS_TOOLS_HOSTILEMODEL_H

#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"

#include <memory>
#include <string>
#include <vector>

namespace qe::test {

/// A model with subjects around a hub whose names try to be something else.
struct HostileModel
{
    HostileModel()
    {
        model::ModelBuilder builder;
        hub = builder.AddQuerySubject(model::Top, "Hub");
        builder.AddItem(hub, "K");
        for (const std::string& name : names) {
            ids.push_back(builder.AddQuerySubject(model::Top, name));
            builder.AddItem(ids.back(), "K\"'<i>");
            std::string inBrackets;
            for (const char character : name)
                inBrackets += character == ']' ? "]]" : std::string(1, character);
            builder.AddRelationship(model::Top, name + "-join", {ids.back(), model::OneToMany},
                                    {hub}, "[" + inBrackets + "].[K\"'<i>] = [Hub].[K]");
        }
        model = builder.Build();
    }

    [[nodiscard]] std::string GetIdText(std::size_t i) const { return ToText(ids[i]); }
    [[nodiscard]] std::string GetHubText() const { return ToText(hub); }

    const std::vector<std::string> names{
        "<b>bold</b> & \"quoted\" 'text'",
        "</script><script>alert(1)</script>",
        "two\nlines\tand\x01\x1B[31m",
        "right \u202E tfel",
        "&lt;entity&gt; \\N \\L {a|b}",
        "a]]b; DROP TABLE t; -- @DATA@",
        "\u05E2\u05D1\u05E8\u05D9\u05EA \u4E2D\u6587",
    };
    /// How markup shows them.
    const std::vector<std::string> shownInMarkup{
        "&lt;b&gt;bold&lt;/b&gt; &amp; &quot;quoted&quot; &#39;text&#39;",
        "&lt;/script&gt;&lt;script&gt;alert(1)&lt;/script&gt;",
        "two\\nlines\\tand\\x01\\x1B[31m",
        "right \\u{202E} tfel",
        "&amp;lt;entity&amp;gt; \\N \\L {a|b}",
        "a]]b; DROP TABLE t; -- @DATA@",
        "\u05E2\u05D1\u05E8\u05D9\u05EA \u4E2D\u6587",
    };
    amd_id hub;
    std::vector<amd_id> ids;
    std::shared_ptr<const model::Model> model;
};

} // namespace qe::test

#endif
