#pragma once

#include <QCheckBox>
#include <cstdint>

// A check box's Value as the preference file stores it: 0 clear, 1 set,
// 2 grey.
namespace CheckBoxValue {

int16_t Get(const QCheckBox* Box);
// 0, 1 and 2 as above. Any other value is refused: the box stays as it
// stands, and the dialog goes on without a word.
void Set(QCheckBox* Box, int32_t Value);

}  // namespace CheckBoxValue
