// The kit's own headers are out of a host's reach.

#include <core/Endpoint.hpp>  // refused: No such file|file not found
