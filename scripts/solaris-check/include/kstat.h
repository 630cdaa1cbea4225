#pragma once
#include "solaris_api.h"
