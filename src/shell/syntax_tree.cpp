#include "shell/syntax_tree.h"

namespace brindlet {

// These hold lists of types that are complete only further down in the header.
bool BashWord::operator==(const BashWord& other) const {
    return elements == other.elements;
}
bool BashPipeline::operator==(const BashPipeline& other) const {
    return components == other.components;
}
bool DoubleQuotedExpansion::operator==(const DoubleQuotedExpansion& other) const {
    return elements == other.elements;
}
bool BashStatementList::operator==(const BashStatementList& other) const {
    return statements == other.statements;
}

bool BashCommand::operator==(const BashCommand& other) const {
    return command == other.command && arguments == other.arguments && redirects == other.redirects;
}

bool BashStatement::operator==(const BashStatement& other) const {
    return parts == other.parts && runInBackground == other.runInBackground;
}

}  // namespace brindlet
