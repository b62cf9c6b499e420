#include "analysis/sim_string.h"

namespace brindlet {

SimString& SimString::operator+=(const SimString& other) {
    if (text_ && other.text_)
        *text_ += *other.text_;
    else
        text_.reset();
    return *this;
}

}  // namespace brindlet
