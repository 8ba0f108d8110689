#include "tests/support/failing_new.h"
