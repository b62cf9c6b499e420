// The statements of a script that have a meaning here.
//
//     readStatement("display notification \"Done\" with title \"Copy\"")
//         == Notification{.text = "Done", .title = "Copy"}
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace brindlet::tools {

struct Notification {
    std::string text{}, title{}, subtitle{};
    bool operator==(const Notification&) const = default;
};

struct VolumeChange {
    std::optional<int> percent{};
    std::optional<bool> isMuted{};
    bool operator==(const VolumeChange&) const = default;
};

using Statement = std::variant<Notification, VolumeChange>;

// One line of a script. A ToolFailure that says what to use here for any other.
Statement readStatement(std::string_view line);

}  // namespace brindlet::tools
