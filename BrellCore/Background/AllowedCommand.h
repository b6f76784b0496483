// The commands that may ever run as a child process: a closed list that fixes each executable and the shape
// of its arguments. There is no free-form command line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brell {

// Made by the functions below, one for each kind.
struct AllowedCommand {
    enum class Kind {
        launchctlPrint,
        launchctlPrintDisabled,
        launchctlBootout,
        launchctlBootstrap,
        launchctlEnable,
        launchctlDisable,
        mdutilStatus,
        sfltoolDumpBTM,
    };

    static constexpr std::string_view launchctl = "/bin/launchctl";
    static constexpr std::string_view mdutil = "/usr/bin/mdutil";
    static constexpr std::string_view sfltool = "/usr/bin/sfltool";

    Kind kind;
    std::string subject;  // a launchd domain, the target of print or a volume's path; empty for sfltool
    std::string item;     // what is addressed in the domain: a label or a job file's path; else empty

    // A domain is gui/ or user/ and a user's number; a target is a domain, or a domain, "/" and a label.
    static AllowedCommand launchctlPrint(std::string target);
    static AllowedCommand launchctlPrintDisabled(std::string domain);
    static AllowedCommand launchctlBootout(std::string domain, std::string label);
    static AllowedCommand launchctlBootstrap(std::string domain, std::string plistPath);
    static AllowedCommand launchctlEnable(std::string domain, std::string label);
    static AllowedCommand launchctlDisable(std::string domain, std::string label);
    static AllowedCommand mdutilStatus(std::string volumePath);
    static AllowedCommand sfltoolDumpBTM();

    std::string_view executable() const;
    std::vector<std::string> arguments() const;  // without the executable
    bool isWrite() const;                        // changes the system's state

    // As shown to the user: the elements joined by blanks, those with a blank inside in single quotes.
    std::string rendered() const;

    // Raises CommandError for an argument that does not have its strict form. Checked again by every runner.
    void validate() const;

    bool operator==(const AllowedCommand&) const = default;
};

}  // namespace brell
