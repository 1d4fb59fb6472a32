#ifndef TESTS_TOOLS_BROWSER_H
#define TESTS_TOOLS_BROWSER_H

#include <nlohmann/json.hpp>
#include <string>
#include <sys/types.h>
#include <vector>

namespace qe::test {

/// A headless Chromium, driven through ChromeDriver by the WebDriver protocol. Its keys are those
/// of a person: they reach the page, or the browser, as from a keyboard.
class Browser
{
public:
    /// Tells whether the two programs are there.
    [[nodiscard]] static bool IsInstalled();

    /// Starts both. Throws std::runtime_error when that fails, as do all operations.
    Browser();
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;
    ~Browser();

    /// Shows a page that it writes into a file of its own.
    void Show(const std::string& page);
    /// Runs the body of a function in the page and gives what it returns.
    nlohmann::json Run(const std::string& body,
                       const nlohmann::json& arguments = nlohmann::json::array());
    /// Presses and releases keys, one after another, while `held` is down.
    void Press(const std::vector<std::string>& keys, const std::string& held = {});
    /// Sends a command of the developer tools.
    void Command(const std::string& name, const nlohmann::json& parameters);

private:
    void StartDriver();
    void StopDriver() noexcept;
    nlohmann::json Send(const std::string& method, const std::string& path,
                        const nlohmann::json& body);
    [[nodiscard]] std::string Exchange(const std::string& request) const;

    pid_t mDriver = 0;
    int mPort = 0;
    std::string mSession;
    std::string mFolder;
};

/// Keys without a character, as WebDriver writes them.
inline const std::string TabKey = "\uE004";
inline const std::string EnterKey = "\uE007";
inline const std::string ControlKey = "\uE009";
inline const std::string DownKey = "\uE015";

} // namespace qe::test

#endif
