#include "Tests/Tools/Browser.h"

#include <arpa/inet.h>
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <netinet/in.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qe::test {

namespace {

using nlohmann::json;

constexpr const char* kDriver = "/usr/bin/chromedriver";
constexpr const char* kBrowser = "/usr/bin/chromium";

/// Reads the driver's greeting, which tells the port that it found free.
int ReadPort(int descriptor)
{
    std::string text;
    std::array<char, 256> buffer{};
    for (ssize_t size = 0; (size = read(descriptor, buffer.data(), buffer.size())) > 0;) {
        text.append(buffer.data(), static_cast<std::size_t>(size));
        const std::size_t place = text.find("successfully on port ");
        if (place != std::string::npos && text.find('.', place) != std::string::npos)
            return std::atoi(text.c_str() + place + std::string("successfully on port ").size());
    }
    throw std::runtime_error("ChromeDriver did not start: " + text);
}

/// Tells whether the response is there as a whole. The driver keeps connections open.
bool IsComplete(const std::string& response)
{
    const std::size_t end = response.find("\r\n\r\n");
    const std::string field = "Content-Length:";
    const std::size_t length = response.find(field);
    if (end == std::string::npos || length > end)
        return false;
    return response.size() - end - 4 >= std::stoul(response.substr(length + field.size()));
}

std::string MakeFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "qerefine-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("No temporary folder");
    return name;
}

} // namespace

bool Browser::IsInstalled()
{
    return access(kDriver, X_OK) == 0 && access(kBrowser, X_OK) == 0;
}

Browser::Browser() : mFolder(MakeFolder())
{
    StartDriver();
    json arguments{"--headless=new",
                   "--no-sandbox",
                   "--disable-gpu",
                   "--disable-quic",
                   "--no-first-run",
                   "--disable-background-networking",
                   "--disable-component-update",
                   "--disable-sync",
                   "--disable-dev-shm-usage",
                   "--window-size=1100,1200",
                   "--user-data-dir=" + mFolder + "/profile"};
    const json options{{"binary", kBrowser}, {"args", std::move(arguments)}};
    try {
        mSession = Send("POST", "/session",
                        {{"capabilities", {{"alwaysMatch", {{"goog:chromeOptions", options}}}}}})
                       .at("sessionId");
    } catch (...) {
        StopDriver();
        throw;
    }
}

Browser::~Browser()
{
    try {
        Send("DELETE", "/session/" + mSession, nullptr);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    StopDriver();
    std::error_code ignored;
    std::filesystem::remove_all(mFolder, ignored);
}

void Browser::StartDriver()
{
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        throw std::runtime_error("No pipe");
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, ends[0]);
    std::string program = kDriver;
    std::string port = "--port=0";
    std::array<char*, 3> arguments{program.data(), port.data(), nullptr};
    const int failure =
        posix_spawn(&mDriver, kDriver, &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (failure != 0)
        throw std::runtime_error("ChromeDriver cannot be started");
    // The end stays open, so that the driver can go on writing.
    mPort = ReadPort(ends[0]);
}

void Browser::StopDriver() noexcept
{
    kill(mDriver, SIGTERM);
    int status = 0;
    waitpid(mDriver, &status, 0);
}

std::string Browser::Exchange(const std::string& request) const
{
    const int connection = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(mPort));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    sockaddr generic{};
    static_assert(sizeof(generic) == sizeof(address));
    std::memcpy(&generic, &address, sizeof(address));
    std::string response;
    if (connect(connection, &generic, sizeof(generic)) == 0 &&
        send(connection, request.data(), request.size(), MSG_NOSIGNAL) ==
            static_cast<ssize_t>(request.size())) {
        std::array<char, 65536> buffer{};
        for (ssize_t size = 0; !IsComplete(response) &&
                               (size = recv(connection, buffer.data(), buffer.size(), 0)) > 0;)
            response.append(buffer.data(), static_cast<std::size_t>(size));
    }
    close(connection);
    return response;
}

json Browser::Send(const std::string& method, const std::string& path, const json& body)
{
    const std::string content = body.is_null() ? std::string() : body.dump();
    const std::string response = Exchange(
        method + ' ' + path + " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n" +
        "Content-Type: application/json\r\nContent-Length: " + std::to_string(content.size()) +
        "\r\n\r\n" + content);
    const std::size_t begin = response.find("\r\n\r\n");
    if (begin == std::string::npos)
        throw std::runtime_error("ChromeDriver gave no answer to " + path);
    json value = json::parse(response.substr(begin + 4)).at("value");
    if (value.is_object() && value.contains("error"))
        throw std::runtime_error(path + ": " + value.at("message").get<std::string>());
    return value;
}

void Browser::Show(const std::string& page)
{
    const std::string file = mFolder + "/page.html";
    std::ofstream(file, std::ios::binary) << page;
    Send("POST", "/session/" + mSession + "/url", {{"url", "file://" + file}});
}

json Browser::Run(const std::string& body, const json& arguments)
{
    return Send("POST", "/session/" + mSession + "/execute/sync",
                {{"script", body}, {"args", arguments}});
}

void Browser::Press(const std::vector<std::string>& keys, const std::string& held)
{
    json actions = json::array();
    const auto add = [&actions](const char* type, const std::string& key) {
        if (!key.empty())
            actions.push_back({{"type", type}, {"value", key}});
    };
    add("keyDown", held);
    for (const std::string& key : keys) {
        add("keyDown", key);
        add("keyUp", key);
    }
    add("keyUp", held);
    const json keyboard{{"type", "key"}, {"id", "keyboard"}, {"actions", std::move(actions)}};
    Send("POST", "/session/" + mSession + "/actions", {{"actions", json::array({keyboard})}});
}

void Browser::Command(const std::string& name, const json& parameters)
{
    Send("POST", "/session/" + mSession + "/goog/cdp/execute",
         {{"cmd", name}, {"params", parameters}});
}

} // namespace qe::test
