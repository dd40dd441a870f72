#pragma once

#include "Failure.h"

#include <QString>

/// The message of `failure`, and the option or command of rkmon that helps.
QString withAdvice(const Failure& failure);
