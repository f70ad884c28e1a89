#include <framework_utility/upper.h>
