#pragma once

#include <QString>
#include <ostream>

#include "support/QtPrinters.h"
