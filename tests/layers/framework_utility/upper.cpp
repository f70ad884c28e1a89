#include <framework_utility/upper.h>

#include <framework_utility/inside.h>
