#pragma once

#include <sys/sysctl.h>
