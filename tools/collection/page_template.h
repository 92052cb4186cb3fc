// The page of the matrix before it is filled: page/page.html with the style and script beside it,
// which the build puts together.
#pragma once

#include <string_view>

namespace vornak::tool {

extern const std::string_view kPageTemplate; ///< {{NAME}} stands for what is filled in

} // namespace vornak::tool
