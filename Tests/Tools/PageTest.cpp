#include "Engine/Model/Model.h"
#include "Tests/Support/ModelText.h"
#include "Tests/Tools/Browser.h"
#include "Tests/Tools/HostileModel.h"
#include "Tools/Ask/Asker.h"
#include "Tools/Model/ToolModel.h"
#include "Tools/Output/Format.h"

#include <gtest/gtest.h>
#include <sstream>

namespace qe::tool {

namespace {

using nlohmann::json;
using test::Browser;

std::string WriteAs(const char* format, const std::shared_ptr<const model::Model>& model,
                    std::vector<std::string> subjects)
{
    ToolModel toolModel;
    toolModel.model = model;
    Question question;
    question.subjects = std::move(subjects);
    std::ostringstream out;
    const Answer answer = Ask(toolModel, question);
    FindFormat(format)->write(out, {toolModel, question, answer, {}});
    return out.str();
}

class Pages : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!Browser::IsInstalled())
            GTEST_SKIP() << "Chromium or ChromeDriver is not installed";
        mBrowser = std::make_unique<Browser>();
    }

    /// Two ways lead from Orders to Region.
    void ShowTwoWays()
    {
        const test::ModelText text(R"(
            Orders(Customer, Store), Customer(Key, Region), Store(Key, Region), Region(Key)
            Orders >- Customer on [Model].[Orders].[Customer] = [Model].[Customer].[Key]
            Orders >- Store on [Model].[Orders].[Store] = [Model].[Store].[Key]
            Customer >- Region on [Model].[Customer].[Region] = [Model].[Region].[Key]
            Store >- Region on [Model].[Store].[Region] = [Model].[Region].[Key]
            Visits >- Store; Role -> Customer
        )");
        mBrowser->Show(WriteAs("html", text.GetModel(), {"Orders", "Region"}));
    }

    /// Goes on with the Tab key, as a person would, until something of that kind has the focus.
    void TabTo(const std::string& selector)
    {
        for (int i = 0; i < 30; ++i) {
            mBrowser->Press({test::TabKey});
            if (mBrowser->Run("return document.activeElement.matches(arguments[0])", {selector}))
                return;
        }
        FAIL() << "the Tab key never reaches " << selector;
    }

    std::unique_ptr<Browser> mBrowser;
};

/// The names of what stands out in the picture by its own colour.
constexpr const char* kLitTitles = R"(
    const plain = getComputedStyle(document.querySelector('.edge.context path')).stroke;
    return [...document.querySelectorAll('.edge.lit')]
        .filter(edge => getComputedStyle(edge.querySelector('path')).stroke !== plain)
        .map(edge => edge.querySelector('title').textContent.split(':')[0]).sort().join(' ');)";

TEST_F(Pages, ShowThePictureAndNeedNoNetwork)
{
    ShowTwoWays();
    EXPECT_EQ(mBrowser->Run("return document.querySelector('h1').textContent"),
              "Joins for Orders, Region");
    EXPECT_EQ(mBrowser->Run(R"(
        return [...document.querySelectorAll('#picture .node')]
            .filter(node => node.getBoundingClientRect().width > 20)
            .map(node => node.querySelector('text').textContent).sort().join(' ');)"),
              "Customer Orders Region Role Store Visits");
    EXPECT_EQ(mBrowser->Run("return document.querySelectorAll('.edge.chosen path').length"), 2);
    EXPECT_EQ(mBrowser->Run("return document.querySelectorAll('.edge.alternative path').length"),
              2);
    EXPECT_EQ(mBrowser->Run("return performance.getEntriesByType('resource').length"), 0);
}

TEST_F(Pages, ChooseAndCopyByKeyboardAlone)
{
    ShowTwoWays();
    EXPECT_EQ(mBrowser->Run(kLitTitles), "");
    TabTo("input[name=path]");
    mBrowser->Press({test::DownKey});
    EXPECT_EQ(mBrowser->Run(kLitTitles), "Orders-Store Store-Region");
    EXPECT_EQ(mBrowser->Run(R"(return [...document.querySelectorAll('.path')]
        .filter(path => path.getBoundingClientRect().height > 0).map(path => path.id).join())"),
              "path-1");
    TabTo("button.copy");
    mBrowser->Press({test::EnterKey});
    // What the clipboard holds shows when it is pasted.
    mBrowser->Run("document.body.append(document.createElement('textarea'));"
                  "setTimeout(() => document.querySelector('textarea').focus(), 300)");
    for (int i = 0; i < 500; ++i) {
        if (mBrowser->Run("return document.activeElement.matches('textarea')"))
            break;
    }
    mBrowser->Press({"v"}, test::ControlKey);
    EXPECT_EQ(mBrowser->Run("return document.querySelector('textarea').value.trim()"),
              mBrowser->Run("return document.querySelector('#path-1 pre').innerText.trim()"));
    EXPECT_EQ(mBrowser->Run("return document.querySelector('#path-1 [role=status]').textContent"),
              "Copied.");
}

TEST_F(Pages, ZoomByKeys)
{
    ShowTwoWays();
    const char* const width = "return document.querySelector('svg').getBoundingClientRect().width";
    const double fitted = mBrowser->Run(width);
    TabTo("#picture");
    mBrowser->Press({"+", "+", "+"});
    EXPECT_NEAR(mBrowser->Run(width).get<double>() / fitted, 1.25 * 1.25 * 1.25, 0.02);
    mBrowser->Press({"-"});
    EXPECT_NEAR(mBrowser->Run(width).get<double>() / fitted, 1.25 * 1.25, 0.02);
    mBrowser->Press({"0"});
    EXPECT_NEAR(mBrowser->Run(width).get<double>() / fitted, 1, 0.02);
}

TEST_F(Pages, AreReadableOnAPhoneAndInTheDark)
{
    mBrowser->Command(
        "Emulation.setDeviceMetricsOverride",
        {{"width", 360}, {"height", 740}, {"deviceScaleFactor", 2}, {"mobile", true}});
    ShowTwoWays();
    EXPECT_EQ(mBrowser->Run("return innerWidth"), 360);
    // The page itself never scrolls sideways; the picture and the SQL do within themselves.
    EXPECT_LE(mBrowser->Run("return document.documentElement.scrollWidth").get<int>(), 360);
    EXPECT_GE(mBrowser
                  ->Run(R"(
        return Math.min(...[...document.querySelectorAll('button, fieldset label')]
            .filter(part => part.offsetParent).map(part => part.getBoundingClientRect().height))
        )")
                  .get<double>(),
              40);
    // How much ink and paper differ, from 1 to 21.
    const char* const contrast = R"(
        const light = colour => {
            const parts = colour.match(/[\d.]+/g).slice(0, 3).map(part => part / 255)
                .map(part => part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4);
            return 0.2126 * parts[0] + 0.7152 * parts[1] + 0.0722 * parts[2];
        };
        const of = (selector, what) => light(getComputedStyle(document.querySelector(selector))[what]);
        const ratio = (a, b) => (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
        const paper = of('body', 'backgroundColor');
        return [ratio(of('body', 'color'), paper), ratio(of('.measure', 'color'), paper),
                ratio(of('.node text', 'fill'), of('.asked polygon, .asked path', 'fill')),
                ratio(of('.edge.chosen path', 'stroke'), paper),
                ratio(of('.edge.alternative path', 'stroke'), paper), paper];)";
    for (const char* const scheme : {"light", "dark"}) {
        mBrowser->Command("Emulation.setEmulatedMedia",
                          {{"features", {{{"name", "prefers-color-scheme"}, {"value", scheme}}}}});
        const auto ratios = mBrowser->Run(contrast).get<std::vector<double>>();
        for (std::size_t i = 0; i < 5; ++i)
            EXPECT_GE(ratios[i], 4.5) << scheme << ' ' << i;
        EXPECT_EQ(ratios[5] < 0.2, std::string(scheme) == "dark");
    }
}

TEST_F(Pages, ShowHostileNamesAsText)
{
    const test::HostileModel hostile;
    for (std::size_t i = 0; i < hostile.names.size(); ++i) {
        SCOPED_TRACE(hostile.names[i]);
        const std::vector<std::string> subjects{hostile.GetIdText(i), hostile.GetHubText()};
        mBrowser->Show(WriteAs("html", hostile.model, subjects));
        // An alert would make these fail.
        EXPECT_EQ(mBrowser->Run("return document.querySelectorAll('b, i, #data ~ script').length"),
                  1);
        const std::string heading = mBrowser->Run("return document.querySelector('h1').innerHTML");
        const json shown = mBrowser->Run("return document.querySelector('h1').textContent");
        EXPECT_NE(heading.find("<bdi>"), std::string::npos);
        EXPECT_EQ(mBrowser->Run(R"(
            const picture = new DOMParser().parseFromString(arguments[0], 'image/svg+xml');
            if (picture.querySelector('parsererror')) return 'not well-formed';
            const name = [...picture.querySelectorAll('.asked title')].map(title => title.textContent)
                .find(title => title !== 'Hub');
            const label = [...picture.querySelectorAll('.asked text')].map(text => text.textContent)
                .find(text => text !== 'Hub').replaceAll('\u00a0', ' ');
            return name === label ? 'Joins for ' + name + ', Hub' : name + ' is not ' + label;)",
                                json::array({WriteAs("svg", hostile.model, subjects)})),
                  shown);
        // The SQL that is copied is exact.
        EXPECT_EQ(mBrowser->Run("return JSON.parse(document.getElementById('data').textContent)"
                                ".paths[0].sql"),
                  WriteAs("sql", hostile.model, subjects));
    }
}

} // namespace

} // namespace qe::tool
