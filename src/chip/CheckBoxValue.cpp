#include "chip/CheckBoxValue.h"

namespace CheckBoxValue {

int16_t Get(const QCheckBox* Box) {
    switch (Box->checkState()) {
        case Qt::Checked:
            return 1;
        case Qt::PartiallyChecked:
            return 2;
        default:
            return 0;
    }
}

void Set(QCheckBox* Box, int32_t Value) {
    switch (Value) {
        case 0:
        case 1:
            Box->setTristate(false);
            Box->setChecked(Value == 1);
            break;
        case 2:
            Box->setTristate(true);
            Box->setCheckState(Qt::PartiallyChecked);
            break;
        default:
            break;
    }
}

}  // namespace CheckBoxValue
