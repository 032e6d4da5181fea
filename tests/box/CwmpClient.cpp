#include "tests/box/CwmpClient.h"

#include "tests/support/Box.h"

#include <gtest/gtest.h>
#include <json-c/json.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <regex>
#include <set>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void becomeBackEnd(int input, int output, const Child::Environment& environment) {
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(open("/tmp/cwmp-errors", O_WRONLY | O_CREAT | O_APPEND, 0600), STDERR_FILENO);
    // The client's own sockets and files, which it does not close.
    dup2(open("/dev/null", O_RDONLY), 23);
    umask(0037);
    if (chdir("/") != 0) _exit(126);
    signal(SIGPIPE, SIG_DFL);
    setenv("KELM_LOG_SYSLOG", "0", 1);
    becomeProgram({KELM_CWMP_PROGRAM, "--json-input"}, environment);
}

struct Drop {
    void operator()(json_object* object) const { json_object_put(object); }
    void operator()(json_tokener* tokener) const { json_tokener_free(tokener); }
};
using Object = std::unique_ptr<json_object, Drop>;

Object parse(const std::string& line) {
    const std::unique_ptr<json_tokener, Drop> tokener(json_tokener_new());
    json_tokener_set_flags(tokener.get(), JSON_TOKENER_STRICT | JSON_TOKENER_VALIDATE_UTF8);
    Object object(
        json_tokener_parse_ex(tokener.get(), line.c_str(), static_cast<int>(line.size() + 1)));
    return json_object_is_type(object.get(), json_type_object) != 0 ? std::move(object) : nullptr;
}

const std::set<std::string> kKeys = {
    "parameter", "value",       "type",         "writable", "notification",  "fault_code",
    "status",    "config_load", "manufacturer", "oui",      "product_class", "serial_number"};

struct TypeRow {
    const char* type;
    const char* form;
};

constexpr TypeRow kTypes[] = {
    {"xsd:boolean", "[01]|true|false"},
    {"xsd:int", "-?[0-9]{1,10}"},
    {"xsd:unsignedInt", "[0-9]{1,10}"},
    {"xsd:unsignedLong", "[0-9]{1,20}"},
    {"xsd:dateTime", "[0-9]{4}-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-5][0-9]Z"},
};

bool isGoodXml(const std::string& text) {
    const bool isControl = std::any_of(text.begin(), text.end(), [](char byte) {
        return static_cast<unsigned char>(byte) < 32 && byte != '\t' && byte != '\n' &&
               byte != '\r';
    });
    return !isControl && text.find("\xEF\xBF\xBE") == std::string::npos &&
           text.find("\xEF\xBF\xBF") == std::string::npos;
}

bool fits(const std::string& type, const std::string& value) {
    if (type == "xsd:string") return true;
    for (const TypeRow& row : kTypes)
        if (type == row.type) return std::regex_match(value, std::regex(row.form));
    return false;
}

std::string faultOfMembers(const Object& object) {
    json_object_object_foreach(object.get(), key, value) {
        if (kKeys.count(key) == 0) return std::string("unknown key ") + key;
        if (json_object_is_type(value, json_type_string) == 0)
            return std::string(key) + " is not a text";
        const std::string text(json_object_get_string(value),
                               static_cast<std::size_t>(json_object_get_string_len(value)));
        if (!isGoodXml(text)) return std::string(key) + " is not good XML";
    }
    return {};
}

std::string faultOfAnswer(const std::string& line) {
    const Object object = parse(line);
    if (object == nullptr) return "not a JSON object";
    const std::string fault = faultOfMembers(object);
    const auto value = memberOf(line, "value"), type = memberOf(line, "type");
    if (!fault.empty() || !value) return fault;
    if (!type) return "a value without a type";
    return fits(*type, *value) ? "" : "the value does not fit " + *type;
}

}  // namespace

CwmpClient::CwmpClient(const Child::Environment& environment) {
    std::array<int, 2> in{}, out{};
    if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0) std::abort();
    pid_ = fork();
    if (pid_ == 0) becomeBackEnd(in[0], out[1], environment);
    close(in[0]);
    close(out[1]);
    input_ = in[1];
    output_ = out[0];
    signal(SIGPIPE, SIG_IGN);
}

void CwmpClient::closeOutput() {
    close(output_);
    output_ = -1;
}

CwmpClient::~CwmpClient() {
    if (output_ >= 0) close(output_);
    if (input_ >= 0) close(input_);
    if (pid_ <= 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
}

void CwmpClient::send(const std::string& text) const {
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count = write(input_, text.data() + done, text.size() - done);
        if (count <= 0) return;
        done += static_cast<std::size_t>(count);
    }
}

std::optional<std::string> CwmpClient::readLine(Clock::time_point end) {
    while (true) {
        const std::size_t lineEnd = pending_.find('\n');
        if (lineEnd != std::string::npos) {
            std::string line = pending_.substr(0, lineEnd);
            pending_.erase(0, lineEnd + 1);
            return line;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd news{output_, POLLIN, 0};
        if (left <= 0 || poll(&news, 1, static_cast<int>(left)) <= 0) return std::nullopt;
        std::array<char, 65536> buffer{};
        const ssize_t count = read(output_, buffer.data(), buffer.size());
        if (count <= 0) return std::nullopt;
        pending_.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

std::optional<CwmpClient::Lines> CwmpClient::answers(std::chrono::milliseconds deadline) {
    Lines lines;
    const auto end = Clock::now() + deadline;
    for (auto line = readLine(end); line; line = readLine(end)) {
        if (*line == kPrompt) return lines;
        lines.push_back(*line);
    }
    return std::nullopt;
}

CwmpClient::Lines CwmpClient::ask(const Lines& commands) {
    std::string text;
    for (const std::string& command : commands) text += command + '\n';
    send(text + "{ \"command\": \"end\" }\n");
    const auto lines = answers();
    EXPECT_TRUE(lines.has_value())
        << "no answer to " << text.substr(0, 1000) << box::readFile("/tmp/cwmp-errors");
    EXPECT_EQ(faultOfAnswers(lines.value_or(Lines{})), "");
    return lines.value_or(Lines{});
}

std::optional<ExitStatus> CwmpClient::waitForEnd() {
    int status = 0;
    if (!box::waitUntil([&] { return waitpid(pid_, &status, WNOHANG) == pid_; }))
        return std::nullopt;
    pid_ = -1;
    ExitStatus end;
    if (WIFEXITED(status)) end.code = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) end.signal = WTERMSIG(status);
    return end;
}

std::optional<ExitStatus> CwmpClient::exit() {
    send("{ \"command\": \"exit\" }\n");
    return waitForEnd();
}

std::optional<ExitStatus> CwmpClient::hangUp() {
    close(input_);
    input_ = -1;
    return waitForEnd();
}

CwmpClient::Lines cwmp(const CwmpClient::Lines& commands) {
    CwmpClient client;
    EXPECT_TRUE(client.answers().has_value());
    const auto lines = client.ask(commands);
    EXPECT_EQ(client.exit(), ExitStatus{}) << box::readFile("/tmp/cwmp-errors");
    return lines;
}

std::string faultOfAnswers(const CwmpClient::Lines& answers) {
    bool isFault = false;
    for (const std::string& line : answers) {
        const std::string fault = faultOfAnswer(line);
        if (!fault.empty()) return fault + ": " + line.substr(0, 1000);
        if (isFault && !memberOf(line, "fault_code"))
            return "a fault that is not on the last line: " + line;
        isFault = memberOf(line, "fault_code").has_value();
    }
    return {};
}

std::optional<std::string> memberOf(const std::string& answer, const std::string& key) {
    const Object object = parse(answer);
    json_object* member = nullptr;
    if (object == nullptr || json_object_object_get_ex(object.get(), key.c_str(), &member) == 0)
        return std::nullopt;
    return std::string(json_object_get_string(member),
                       static_cast<std::size_t>(json_object_get_string_len(member)));
}

std::string cwmpLine(const char* command, const char* group, const std::string& parameter,
                     const std::string* argument) {
    const Object object(json_object_new_object());
    const auto add = [&](const char* key, const std::string& text) {
        json_object_object_add(
            object.get(), key,
            json_object_new_string_len(text.data(), static_cast<int>(text.size())));
    };
    add("command", command);
    add("class", group);
    if (!parameter.empty()) add("parameter", parameter);
    if (argument != nullptr) add("argument", *argument);
    return json_object_to_json_string_ext(object.get(), JSON_C_TO_STRING_SPACED);
}

std::string cwmpSet(const std::string& parameter, const std::string& argument) {
    return cwmpLine("set", "value", parameter, &argument);
}

std::string cwmpApply(const char* group, const std::string& argument) {
    return cwmpLine("apply", group, "", &argument);
}

std::string cwmpGet(const char* group, const std::string& parameter) {
    return cwmpLine("get", group, parameter);
}
