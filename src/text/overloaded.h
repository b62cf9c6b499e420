// Visits a sum type with one lambda a case, so that a new case fails to compile where it isn't handled.
//
//     std::visit(Overloaded{[](const Text& text) { ... }, [](const Variable& use) { ... }}, element);
#pragma once

namespace brindlet {

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

}  // namespace brindlet
