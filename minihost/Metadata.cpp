// The host's metadata library.
#include "host/Metadata.h"

namespace zorvane {
namespace dataio {

DeferredMinMaxWriter::~DeferredMinMaxWriter() = default;
DeferredMinMaxWriterFactory::~DeferredMinMaxWriterFactory() = default;

}  // namespace dataio
}  // namespace zorvane
