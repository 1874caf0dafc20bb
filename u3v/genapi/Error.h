#pragma once

#include <stdexcept>

namespace Orvi::GenApi {

/// A node refuses, or a description cannot be used. The text is "[node] what, why".
class Error : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace Orvi::GenApi
