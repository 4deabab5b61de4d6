#pragma once

#include <QCheckBox>
#include <cstdint>

// A check box's Value as the preference file stores it: 0 clear, 1 set,
// 2 grey.
namespace CheckBoxValue {

int16_t Get(const QCheckBox* Box);
// 0, 1 and 2 as above. The old check box refused any other value, and the
// chip dialogs' error trap went on with the box as it stood.
void Set(QCheckBox* Box, int32_t Value);

}  // namespace CheckBoxValue
