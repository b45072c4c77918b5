#pragma once

#include <gtest/gtest.h>

#include <string>

namespace fb::test {

// Names the two instances of a test run once on a folder project and once on a bundle.
inline std::string folderOrBundle(const ::testing::TestParamInfo<bool> &parameter)
{
    return parameter.param ? "Bundle" : "Folder";
}

} // namespace fb::test
