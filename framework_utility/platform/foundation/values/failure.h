#pragma once

#include <concepts>
#include <memory>
#include <optional>
#include <type_traits>

namespace FrameworkUtility::detail {

/// The empty result of any function that can fail: false, an absent value or null. So every way of
/// filling an `Error*` gives one, and `return fail(error, …);` fits everywhere.
struct Failure {
  template <std::same_as<bool> Bool>
  operator Bool() const {
    return false;
  }
  // As a flag it would be there, and false.
  template <class T>
  requires(!std::same_as<T, bool>) operator std::optional<T>() const { return std::nullopt; }
  template <class T>
  operator std::unique_ptr<T>() const {
    return nullptr;
  }
  // Of characters a text could be made.
  template <class T>
  requires std::is_class_v<T>
  operator T*() const { return nullptr; }
};

}  // namespace FrameworkUtility::detail
