#include "taskctor.h"

TaskCtor::~TaskCtor() = default;
