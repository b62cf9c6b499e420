#include "shell/basher.h"

#include <utility>

#include "shell/parser.h"

namespace brindlet {

BasherError::BasherError(Kind kind, std::string text) : kind_(kind), text_(std::move(text)) {
    switch (kind_) {
        case Kind::expected:
        case Kind::unsupported:
            description_ = text_;
            break;
        case Kind::unimplemented:
            description_ = "Unimplemented bash feature: " + text_;
            break;
        case Kind::noRootPipeline:
            description_ = "No root pipeline";
            break;
    }
}

BashStatementList Basher::parse() {
    Parser parser(bashCommand_, "", 0);
    BashStatementList list = parser.parse();
    remainderAt_ = parser.position();
    return list;
}

}  // namespace brindlet
