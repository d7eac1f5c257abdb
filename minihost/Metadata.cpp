// The host's metadata library: exceptions, streams, client data blocks and the
// in-memory description of a metadata data set.
#include "host/Metadata.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "minihost/Internal.h"

namespace zorvane {
namespace dataio {

DeferredMinMaxWriter::~DeferredMinMaxWriter() = default;
DeferredMinMaxWriterFactory::~DeferredMinMaxWriterFactory() = default;

// ---- Exceptions -----------------------------------------------------------------

IOException::IOException(const std::string& what) : std::runtime_error(what) {}
IOException::~IOException() = default;

InvalidMetadataVersionException::InvalidMetadataVersionException(const std::string& what)
    : std::runtime_error(what) {}
InvalidMetadataVersionException::~InvalidMetadataVersionException() = default;

// ---- Streams -----------------------------------------------------------------------

InputStream::~InputStream() = default;
OutputStream::~OutputStream() = default;

struct FileInputStream::Impl {
    std::FILE* file = nullptr;
    std::string path;
};

FileInputStream::FileInputStream(const std::string& path) : impl_(new Impl) {
    impl_->path = path;
    impl_->file = std::fopen(path.c_str(), "rb");
    if (impl_->file == nullptr)
        throw IOException("cannot open " + path + ": " + std::strerror(errno));
}

FileInputStream::~FileInputStream() {
    std::fclose(impl_->file);
}

size_t FileInputStream::read(void* buffer, size_t size) {
    size_t got = std::fread(buffer, 1, size, impl_->file);
    if (got < size && std::ferror(impl_->file))
        throw IOException("cannot read " + impl_->path);
    return got;
}

struct BufferedInputStream::Impl {
    std::shared_ptr<InputStream> source;
    std::vector<char> buffer;
    size_t begin = 0;  // next unread byte of buffer
    size_t end = 0;    // end of the bytes in buffer
};

BufferedInputStream::BufferedInputStream(std::shared_ptr<InputStream> source, size_t bufferSize)
    : impl_(new Impl) {
    if (source == nullptr)
        throw IOException("no stream to read");
    impl_->source = std::move(source);
    impl_->buffer.resize(std::max<size_t>(bufferSize, 1));
}

BufferedInputStream::~BufferedInputStream() = default;

size_t BufferedInputStream::read(void* buffer, size_t size) {
    char* out = static_cast<char*>(buffer);
    size_t done = 0;
    while (done < size) {
        if (impl_->begin == impl_->end) {
            if (size - done >= impl_->buffer.size()) {  // a large read bypasses the buffer
                size_t got = impl_->source->read(out + done, size - done);
                if (got == 0)
                    break;
                done += got;
                continue;
            }
            impl_->begin = 0;
            impl_->end = impl_->source->read(impl_->buffer.data(), impl_->buffer.size());
            if (impl_->end == 0)
                break;
        }
        size_t n = std::min(size - done, impl_->end - impl_->begin);
        std::memcpy(out + done, impl_->buffer.data() + impl_->begin, n);
        impl_->begin += n;
        done += n;
    }
    return done;
}

struct FileOutputStream::Impl {
    std::FILE* file = nullptr;
    std::string path;
};

FileOutputStream::FileOutputStream(const std::string& path) : impl_(new Impl) {
    impl_->path = path;
    impl_->file = std::fopen(path.c_str(), "wb");
    if (impl_->file == nullptr)
        throw IOException("cannot create " + path + ": " + std::strerror(errno));
}

FileOutputStream::~FileOutputStream() {
    std::fclose(impl_->file);
}

void FileOutputStream::write(const void* data, size_t size) {
    if (size > 0 && std::fwrite(data, 1, size, impl_->file) != size) {
        throw IOException("cannot write " + impl_->path + ": " + std::strerror(errno));
    }
}

void FileOutputStream::flush() {
    if (std::fflush(impl_->file) != 0)
        throw IOException("cannot write " + impl_->path + ": " + std::strerror(errno));
}

struct BufferedOutputStream::Impl {
    std::shared_ptr<OutputStream> target;
    std::vector<char> buffer;
    size_t used = 0;  // bytes waiting in buffer
};

BufferedOutputStream::BufferedOutputStream(std::shared_ptr<OutputStream> target, size_t bufferSize)
    : impl_(new Impl) {
    if (target == nullptr)
        throw IOException("no stream to write");
    impl_->target = std::move(target);
    impl_->buffer.resize(std::max<size_t>(bufferSize, 1));
}

BufferedOutputStream::~BufferedOutputStream() {
    try {
        flush();
    } catch (const IOException&) {
        // A destructor cannot report; a caller that cares calls flush itself.
    }
}

void BufferedOutputStream::write(const void* data, size_t size) {
    if (size == 0)
        return;  // an empty block may come with a null pointer
    const char* in = static_cast<const char*>(data);
    if (impl_->used + size > impl_->buffer.size()) {
        impl_->target->write(impl_->buffer.data(), impl_->used);
        impl_->used = 0;
        if (size >= impl_->buffer.size()) {
            impl_->target->write(in, size);
            return;
        }
    }
    std::memcpy(impl_->buffer.data() + impl_->used, in, size);
    impl_->used += size;
}

void BufferedOutputStream::flush() {
    if (impl_->used > 0) {
        size_t used = impl_->used;
        impl_->used = 0;
        impl_->target->write(impl_->buffer.data(), used);
    }
    impl_->target->flush();
}

// ---- Client data ----------------------------------------------------------------------

ClientDataBlock::ClientDataBlock() = default;
ClientDataBlock::ClientDataBlock(std::vector<int64_t> words) : words_(std::move(words)) {}
ClientDataBlock::~ClientDataBlock() = default;

void ClientDataBlock::putWord(int64_t word) {
    words_.push_back(word);
}

void ClientDataBlock::putStrings(const std::vector<std::string>& strings) {
    words_.push_back(static_cast<int64_t>(strings.size()));
    for (const std::string& s : strings) {
        words_.push_back(static_cast<int64_t>(s.size()));
        for (unsigned char c : s)
            words_.push_back(c);
    }
}

int64_t ClientDataBlock::getWord() {
    if (cursor_ >= words_.size())
        throw IOException("client data block ended early");
    return words_[cursor_++];
}

std::vector<std::string> ClientDataBlock::getStrings() {
    int64_t count = getWord();
    if (count < 0 || static_cast<uint64_t>(count) > words_.size() - cursor_) {
        throw IOException("bad string count in a client data block");
    }
    std::vector<std::string> strings;
    strings.reserve(static_cast<size_t>(count));
    for (int64_t i = 0; i < count; ++i) {
        int64_t length = getWord();
        if (length < 0 || static_cast<uint64_t>(length) > words_.size() - cursor_) {
            throw IOException("bad string length in a client data block");
        }
        std::string s;
        s.reserve(static_cast<size_t>(length));
        for (int64_t k = 0; k < length; ++k) {
            int64_t c = getWord();
            if (c < 0 || c > 255)
                throw IOException("bad character in a client data block");
            s.push_back(static_cast<char>(c));
        }
        strings.push_back(std::move(s));
    }
    return strings;
}

bool ClientDataBlock::atEnd() const {
    return cursor_ >= words_.size();
}

void ClientDataBlock::swapWordBytes() {
    for (int64_t& word : words_) {
        uint64_t w = static_cast<uint64_t>(word);
        uint64_t swapped = 0;
        for (int i = 0; i < 8; ++i)
            swapped |= ((w >> (8 * i)) & 0xffu) << (8 * (7 - i));
        word = static_cast<int64_t>(swapped);
    }
}

const std::vector<int64_t>& ClientDataBlock::words() const {
    return words_;
}

MetadataClientDataInterface::~MetadataClientDataInterface() = default;

ClientDataHolder::ClientDataHolder() = default;
ClientDataHolder::~ClientDataHolder() = default;

void ClientDataHolder::submitClientData(const MetadataClientDataInterface& clientData) {
    ClientDataBlock block;
    clientData.writeBlock(block);
    words_ = block.words();
    hasClientData_ = true;
}

void ClientDataHolder::fetchClientData(MetadataClientDataInterface& clientData, bool swap) const {
    if (!hasClientData_)
        throw IOException("no client data stored");
    ClientDataBlock block(words_);
    if (swap)
        block.swapWordBytes();
    clientData.readBlock(block);
}

bool ClientDataHolder::hasClientData() const {
    return hasClientData_;
}

const std::vector<int64_t>& ClientDataHolder::clientDataWords() const {
    return words_;
}

void ClientDataHolder::setClientDataWords(std::vector<int64_t> words) {
    words_ = std::move(words);
    hasClientData_ = true;
}

// ---- Data set descriptions --------------------------------------------------------------

UniqueFilename::UniqueFilename(const std::string& name, bool nativeByteOrder, int32_t version)
    : name_(name), nativeByteOrder_(nativeByteOrder), version_(version) {}
UniqueFilename::~UniqueFilename() = default;
const std::string& UniqueFilename::name() const {
    return name_;
}
bool UniqueFilename::isNativeByteOrder() const {
    return nativeByteOrder_;
}
int32_t UniqueFilename::version() const {
    return version_;
}

VariableMinMax::VariableMinMax(const std::string& name) : name_(name) {}

VariableMinMax::~VariableMinMax() {
    if (writer_ != nullptr)
        writer_->release();
}

const std::string& VariableMinMax::name() const {
    return name_;
}
bool VariableMinMax::hasRange() const {
    return hasRange_;
}
double VariableMinMax::minimum() const {
    return minimum_;
}
double VariableMinMax::maximum() const {
    return maximum_;
}

void VariableMinMax::setRange(double minimum, double maximum) {
    hasRange_ = true;
    minimum_ = minimum;
    maximum_ = maximum;
}

void VariableMinMax::bindDeferredWriter(DeferredMinMaxWriter* writer) {
    if (writer != nullptr)
        writer->retain();
    if (writer_ != nullptr)
        writer_->release();
    writer_ = writer;
}

DeferredMinMaxWriter* VariableMinMax::deferredWriter() const {
    return writer_;
}

MetadataZone::MetadataZone(MetadataZoneKind kind, const std::string& name, int64_t numNodes,
                           int64_t numElements, int64_t numFaces, int64_t numFaceNodes,
                           int64_t numBoundaryConnections)
    : kind_(kind),
      name_(name),
      numNodes_(numNodes),
      numElements_(numElements),
      numFaces_(numFaces),
      numFaceNodes_(numFaceNodes),
      numBoundaryConnections_(numBoundaryConnections) {}
MetadataZone::~MetadataZone() = default;
MetadataZoneKind MetadataZone::kind() const {
    return kind_;
}
const std::string& MetadataZone::name() const {
    return name_;
}
int64_t MetadataZone::numNodes() const {
    return numNodes_;
}
int64_t MetadataZone::numElements() const {
    return numElements_;
}
int64_t MetadataZone::numFaces() const {
    return numFaces_;
}
int64_t MetadataZone::numFaceNodes() const {
    return numFaceNodes_;
}
int64_t MetadataZone::numBoundaryConnections() const {
    return numBoundaryConnections_;
}

std::shared_ptr<VariableMinMax> MetadataZone::addVariable(const std::string& name) {
    variables_.push_back(std::make_shared<VariableMinMax>(name));
    return variables_.back();
}

const std::vector<std::shared_ptr<VariableMinMax>>& MetadataZone::variables() const {
    return variables_;
}

MetadataDataset::MetadataDataset(int32_t clientDataVersion) : clientDataVersion_(clientDataVersion) {}
MetadataDataset::~MetadataDataset() = default;
int32_t MetadataDataset::clientDataVersion() const {
    return clientDataVersion_;
}

void MetadataDataset::setClientDataVersion(int32_t clientDataVersion) {
    clientDataVersion_ = clientDataVersion;
}
void MetadataDataset::setName(const std::string& name) {
    name_ = name;
}
const std::string& MetadataDataset::name() const {
    return name_;
}
void MetadataDataset::setLoaderName(const std::string& loaderName) {
    loaderName_ = loaderName;
}
const std::string& MetadataDataset::loaderName() const {
    return loaderName_;
}
void MetadataDataset::setLoaderVersion(int32_t loaderVersion) {
    loaderVersion_ = loaderVersion;
}
int32_t MetadataDataset::loaderVersion() const {
    return loaderVersion_;
}
void MetadataDataset::addUniqueFilename(std::shared_ptr<UniqueFilename> file) {
    files_.push_back(std::move(file));
}
const std::vector<std::shared_ptr<UniqueFilename>>& MetadataDataset::uniqueFilenames() const {
    return files_;
}

namespace {

std::shared_ptr<MetadataZone> appendZone(std::vector<std::shared_ptr<MetadataZone>>& zones,
                                         MetadataZoneKind kind, const std::string& name, int64_t numNodes,
                                         int64_t numElements, int64_t numFaces = 0, int64_t numFaceNodes = 0,
                                         int64_t numBoundaryConnections = 0) {
    zones.push_back(std::make_shared<MetadataZone>(kind, name, numNodes, numElements, numFaces, numFaceNodes,
                                                   numBoundaryConnections));
    return zones.back();
}

}  // namespace

std::shared_ptr<MetadataZone> MetadataDataset::addFETriangleZone(const std::string& name, int64_t numNodes,
                                                                 int64_t numElements) {
    return appendZone(zones_, MetadataZoneKind::FETriangle, name, numNodes, numElements);
}

std::shared_ptr<MetadataZone> MetadataDataset::addFEQuadZone(const std::string& name, int64_t numNodes,
                                                             int64_t numElements) {
    return appendZone(zones_, MetadataZoneKind::FEQuad, name, numNodes, numElements);
}

std::shared_ptr<MetadataZone> MetadataDataset::addFETetraZone(const std::string& name, int64_t numNodes,
                                                              int64_t numElements) {
    return appendZone(zones_, MetadataZoneKind::FETetra, name, numNodes, numElements);
}

std::shared_ptr<MetadataZone> MetadataDataset::addFEBrickZone(const std::string& name, int64_t numNodes,
                                                              int64_t numElements) {
    return appendZone(zones_, MetadataZoneKind::FEBrick, name, numNodes, numElements);
}

std::shared_ptr<MetadataZone> MetadataDataset::addFELineZone(const std::string& name, int64_t numNodes,
                                                             int64_t numElements) {
    return appendZone(zones_, MetadataZoneKind::FELine, name, numNodes, numElements);
}

std::shared_ptr<MetadataZone> MetadataDataset::addFEPolygonZone(const std::string& name, int64_t numNodes,
                                                                int64_t numElements, int64_t numFaces,
                                                                int64_t numFaceNodes,
                                                                int64_t numBoundaryConnections) {
    return appendZone(zones_, MetadataZoneKind::FEPolygon, name, numNodes, numElements, numFaces,
                      numFaceNodes, numBoundaryConnections);
}

std::shared_ptr<MetadataZone> MetadataDataset::addFEPolyhedronZone(const std::string& name, int64_t numNodes,
                                                                   int64_t numElements, int64_t numFaces,
                                                                   int64_t numFaceNodes,
                                                                   int64_t numBoundaryConnections) {
    return appendZone(zones_, MetadataZoneKind::FEPolyhedron, name, numNodes, numElements, numFaces,
                      numFaceNodes, numBoundaryConnections);
}

std::shared_ptr<MetadataZone> MetadataDataset::addUnsupportedZone(const std::string& name, int64_t numNodes,
                                                                  int64_t numElements) {
    return appendZone(zones_, MetadataZoneKind::Unsupported, name, numNodes, numElements);
}

const std::vector<std::shared_ptr<MetadataZone>>& MetadataDataset::zones() const {
    return zones_;
}
bool MetadataDataset::isClientDataNativeByteOrder() const {
    return clientDataNativeByteOrder_;
}
void MetadataDataset::setClientDataNativeByteOrder(bool native) {
    clientDataNativeByteOrder_ = native;
}

}  // namespace dataio

}  // namespace zorvane
