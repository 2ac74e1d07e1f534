#pragma once

// For sources only: brings in Boost.Describe.

#include <Platform/Enum.h>

#include <boost/describe/enum.hpp>
#include <boost/describe/enumerators.hpp>
#include <boost/mp11/algorithm.hpp>

#include <array>

namespace zelto {

template <class E> std::span<const EnumCase<E>> describedCases() {
    using Enumerators = boost::describe::describe_enumerators<E>;
    static const auto cases = [] {
        std::array<EnumCase<E>, boost::mp11::mp_size<Enumerators>::value> all{};
        std::size_t index = 0;
        boost::mp11::mp_for_each<Enumerators>([&](auto each) {
            std::string_view name = each.name;
            if (name.ends_with('_')) {
                name.remove_suffix(1);
            }
            all[index++] = {each.value, name};
        });
        return all;
    }();
    return cases;
}

} // namespace zelto

// ZELTO_DESCRIBE_ENUM(E, cases...) is used in namespace zelto, in the source file of the header that declares
// E.
#define ZELTO_DESCRIBE_ENUM(E, ...)                                                                          \
    BOOST_DESCRIBE_ENUM(E, __VA_ARGS__)                                                                      \
    template <> std::span<const EnumCase<E>> casesOf<E>() {                                                  \
        return describedCases<E>();                                                                          \
    }                                                                                                        \
    static_assert(true)
