// The one place where Boost.URL is compiled.
#include <boost/url/src.hpp>
