// The metadata director: where the metadata file of a data file lies, whether
// it is stale, and its format; and the deferred min/max writers that put a
// variable's range into the file once the values have been loaded.
//
// The metadata file of `dir/name` is `dir/.name.zmeta`. Its layout, every
// number in the byte order of the machine that wrote it:
//
//   header   "ZORMETA" and a zero byte; format version (i32, 1); the number
//            0x01020304 (i32, tells the byte order); the data file's size and
//            modification time in nanoseconds (i64, i64), which make the file
//            stale when they change; a write id (u64)
//   data set name, loader name (strings: i64 length, then the bytes);
//            loader version, client data version (i32, i32)
//   files    count (i64); each: name, native byte order (i32), version (i32),
//            client data
//   zones    count (i64); each: kind (i32), name, nodes, elements, faces,
//            face nodes, boundary connections (5 x i64), client data,
//            variables: count (i64); each: name, client data, then the range
//            slot: known (i32), minimum, maximum (f64, f64)
//   client data: present (i32), word count (i64), the words (i64 each)
//
// A deferred writer bound to a range slot at write time rewrites that slot in
// place when its range comes, if the file still carries the same write id.
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <random>
#include <vector>

#include "host/Metadata.h"
#include "minihost/Internal.h"

namespace zorvane {
namespace dataio {

namespace {

const char magic[8] = {'Z', 'O', 'R', 'M', 'E', 'T', 'A', '\0'};
constexpr int32_t formatVersion = 1;
constexpr int32_t byteOrderMark = 0x01020304;
constexpr size_t headerSize = 8 + 4 + 4 + 8 + 8 + 8;
constexpr size_t writeIdOffset = 8 + 4 + 4 + 8 + 8;
constexpr int64_t maxCount = int64_t(1) << 32;  // a larger count means a damaged file

// Size and modification time of a file; false when it cannot be seen.
bool fileIdentity(const std::string& path, int64_t* size, int64_t* mtime) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return false;
    *size = static_cast<int64_t>(status.st_size);
    *mtime = static_cast<int64_t>(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec;
    return true;
}

uint64_t newWriteId() {
    static std::atomic<uint64_t> counter{0};
    std::random_device random;
    return (static_cast<uint64_t>(random()) << 32) ^ random() ^ (++counter << 48);
}

// A deferred writer of this host: keeps the range, and writes it into its
// slot of a metadata file when it is bound to one.
class RangeSlotWriter : public DeferredMinMaxWriter {
  public:
    void setMinMax(double minimum, double maximum) override {
        std::lock_guard<std::mutex> guard(mutex_);
        hasRange_ = true;
        minimum_ = minimum;
        maximum_ = maximum;
        if (!path_.empty())
            writeSlot();
    }
    // The range, if it came already.
    bool range(double* minimum, double* maximum) {
        std::lock_guard<std::mutex> guard(mutex_);
        *minimum = minimum_;
        *maximum = maximum_;
        return hasRange_;
    }
    // Binds the writer to a slot of a file just written.
    void bind(const std::string& path, uint64_t writeId, uint64_t offset) {
        std::lock_guard<std::mutex> guard(mutex_);
        path_ = path;
        writeId_ = writeId;
        offset_ = offset;
    }

  private:
    // Rewrites the slot when the file is still the one written (mutex_ held).
    // Failures are silent: the range is then simply missing next time.
    void writeSlot() {
        std::FILE* file = std::fopen(path_.c_str(), "r+b");
        if (file == nullptr)
            return;
        uint64_t id = 0;
        if (std::fseek(file, static_cast<long>(writeIdOffset), SEEK_SET) == 0 &&
            std::fread(&id, sizeof id, 1, file) == 1 && id == writeId_ &&
            std::fseek(file, static_cast<long>(offset_), SEEK_SET) == 0) {
            int32_t known = 1;
            std::fwrite(&known, sizeof known, 1, file);
            std::fwrite(&minimum_, sizeof minimum_, 1, file);
            std::fwrite(&maximum_, sizeof maximum_, 1, file);
        }
        std::fclose(file);
    }

    std::mutex mutex_;  // guards the fields below
    bool hasRange_ = false;
    double minimum_ = 0.0, maximum_ = 0.0;
    std::string path_;  // bound metadata file; empty until bound
    uint64_t writeId_ = 0;
    uint64_t offset_ = 0;  // of the slot's "known" flag
};

class RangeSlotWriterFactory : public DeferredMinMaxWriterFactory {
  public:
    ~RangeSlotWriterFactory() override {
        for (DeferredMinMaxWriter* writer : writers_)
            writer->release();
    }
    DeferredMinMaxWriter* createDeferredMinMaxWriter() override {
        writers_.push_back(new RangeSlotWriter);
        return writers_.back();
    }

  private:
    std::vector<DeferredMinMaxWriter*> writers_;  // one reference each
};

// Writes numbers and strings, counting the bytes.
class Writer {
  public:
    explicit Writer(OutputStream& out) : out_(out) {}
    template <typename T>
    void put(T value) {
        out_.write(&value, sizeof value);
        written_ += sizeof value;
    }
    void putString(const std::string& s) {
        put<int64_t>(static_cast<int64_t>(s.size()));
        out_.write(s.data(), s.size());
        written_ += s.size();
    }
    void putClientData(const ClientDataHolder& holder) {
        put<int32_t>(holder.hasClientData() ? 1 : 0);
        const std::vector<int64_t>& words = holder.clientDataWords();
        put<int64_t>(static_cast<int64_t>(words.size()));
        out_.write(words.data(), words.size() * sizeof(int64_t));
        written_ += words.size() * sizeof(int64_t);
    }
    uint64_t written() const { return written_; }

  private:
    OutputStream& out_;
    uint64_t written_ = 0;
};

// Reads what Writer wrote, swapping numbers of the other byte order.
class Reader {
  public:
    explicit Reader(InputStream& in) : in_(in) {}
    void setSwap(bool swap) { swap_ = swap; }
    void bytes(void* buffer, size_t size) {
        if (in_.read(buffer, size) != size)
            throw IOException("the metadata file ends early");
    }
    template <typename T>
    T get() {
        T value;
        bytes(&value, sizeof value);
        if (swap_) {
            unsigned char* b = reinterpret_cast<unsigned char*>(&value);
            for (size_t i = 0; i < sizeof value / 2; ++i)
                std::swap(b[i], b[sizeof value - 1 - i]);
        }
        return value;
    }
    int64_t count() {
        int64_t n = get<int64_t>();
        if (n < 0 || n > maxCount)
            throw IOException("the metadata file is damaged (count " + std::to_string(n) + ")");
        return n;
    }
    std::string getString() {
        std::string s(static_cast<size_t>(count()), '\0');
        if (!s.empty())
            bytes(&s[0], s.size());
        return s;
    }
    // Client data words stay as written: the loader swaps them if it must.
    void getClientData(ClientDataHolder& holder) {
        int32_t present = get<int32_t>();
        std::vector<int64_t> words(static_cast<size_t>(count()));
        if (!words.empty())
            bytes(words.data(), words.size() * sizeof(int64_t));
        if (present != 0)
            holder.setClientDataWords(std::move(words));
    }

  private:
    InputStream& in_;
    bool swap_ = false;
};

}  // namespace

struct MetadataDirector::Impl {
    RangeSlotWriterFactory factory;
    std::string dataFile;      // the data file of the last initializeMetadataFilename
    std::string metadataFile;  // its metadata file
    int64_t dataFileSize = 0;  // identity of dataFile at that moment
    int64_t dataFileTime = 0;
};

MetadataDirector::MetadataDirector() : impl_(new Impl) {}
MetadataDirector::~MetadataDirector() = default;

std::string MetadataDirector::metadataFilename(const std::string& basePath,
                                               const std::string& bareName) const {
    return basePath + "." + bareName + ".zmeta";
}

bool MetadataDirector::metadataFileAvailable(const std::string& basePath, const std::string& bareName) const {
    int64_t size, time;
    if (!fileIdentity(basePath + bareName, &size, &time))
        return false;
    std::FILE* file = std::fopen(metadataFilename(basePath, bareName).c_str(), "rb");
    if (file == nullptr)
        return false;
    unsigned char header[headerSize];
    bool whole = std::fread(header, 1, headerSize, file) == headerSize;
    std::fclose(file);
    // Only a header that names another state of the data file makes the
    // metadata file stale; a damaged one is there, and its reading will say so.
    if (!whole || std::memcmp(header, magic, sizeof magic) != 0)
        return true;
    int32_t mark;
    int64_t storedSize, storedTime;
    std::memcpy(&mark, header + 12, 4);
    std::memcpy(&storedSize, header + 16, 8);
    std::memcpy(&storedTime, header + 24, 8);
    if (mark != byteOrderMark)
        return true;  // written on a machine of the other byte order: no time to compare
    return storedSize == size && storedTime == time;
}

std::string MetadataDirector::initializeMetadataFilename(const std::string& basePath,
                                                         const std::string& bareName) {
    impl_->dataFile = basePath + bareName;
    impl_->metadataFile = metadataFilename(basePath, bareName);
    if (!fileIdentity(impl_->dataFile, &impl_->dataFileSize, &impl_->dataFileTime)) {
        impl_->dataFileSize = impl_->dataFileTime = -1;
    }
    std::remove(impl_->metadataFile.c_str());
    return impl_->metadataFile;
}

void MetadataDirector::write(std::shared_ptr<OutputStream> output, const MetadataDataset& dataset) {
    if (output == nullptr)
        throw IOException("no stream to write the metadata file to");
    Writer out(*output);
    uint64_t writeId = newWriteId();
    output->write(magic, sizeof magic);
    out.put<int32_t>(formatVersion);  // the counted offsets start behind the magic
    out.put<int32_t>(byteOrderMark);
    out.put<int64_t>(impl_->dataFileSize);
    out.put<int64_t>(impl_->dataFileTime);
    out.put<uint64_t>(writeId);
    out.putString(dataset.name());
    out.putString(dataset.loaderName());
    out.put<int32_t>(dataset.loaderVersion());
    out.put<int32_t>(dataset.clientDataVersion());
    out.put<int64_t>(static_cast<int64_t>(dataset.uniqueFilenames().size()));
    for (const auto& file : dataset.uniqueFilenames()) {
        out.putString(file->name());
        out.put<int32_t>(file->isNativeByteOrder() ? 1 : 0);
        out.put<int32_t>(file->version());
        out.putClientData(*file);
    }
    out.put<int64_t>(static_cast<int64_t>(dataset.zones().size()));
    for (const auto& zone : dataset.zones()) {
        out.put<int32_t>(static_cast<int32_t>(zone->kind()));
        out.putString(zone->name());
        out.put<int64_t>(zone->numNodes());
        out.put<int64_t>(zone->numElements());
        out.put<int64_t>(zone->numFaces());
        out.put<int64_t>(zone->numFaceNodes());
        out.put<int64_t>(zone->numBoundaryConnections());
        out.putClientData(*zone);
        out.put<int64_t>(static_cast<int64_t>(zone->variables().size()));
        for (const auto& variable : zone->variables()) {
            out.putString(variable->name());
            out.putClientData(*variable);
            double minimum = variable->minimum(), maximum = variable->maximum();
            bool known = variable->hasRange();
            auto* writer = dynamic_cast<RangeSlotWriter*>(variable->deferredWriter());
            if (!known && writer != nullptr) {
                known = writer->range(&minimum, &maximum);
                if (!known && !impl_->metadataFile.empty()) {
                    writer->bind(impl_->metadataFile, writeId, sizeof magic + out.written());
                }
            }
            out.put<int32_t>(known ? 1 : 0);
            out.put<double>(known ? minimum : 0.0);
            out.put<double>(known ? maximum : 0.0);
        }
    }
    output->flush();
}

void MetadataDirector::read(std::shared_ptr<InputStream> input, MetadataDataset& dataset) {
    if (input == nullptr)
        throw IOException("no stream to read the metadata file from");
    Reader in(*input);
    char head[sizeof magic];
    in.bytes(head, sizeof head);
    if (std::memcmp(head, magic, sizeof magic) != 0)
        throw IOException("not a metadata file");
    int32_t version = in.get<int32_t>();
    int32_t mark = in.get<int32_t>();
    bool swap = mark != byteOrderMark;
    if (swap) {
        int32_t swapped = static_cast<int32_t>(__builtin_bswap32(static_cast<uint32_t>(mark)));
        if (swapped != byteOrderMark)
            throw IOException("the metadata file is damaged (byte order mark)");
        version = static_cast<int32_t>(__builtin_bswap32(static_cast<uint32_t>(version)));
    }
    if (version != formatVersion) {
        throw InvalidMetadataVersionException("metadata file of version " + std::to_string(version) +
                                              "; this library reads version " +
                                              std::to_string(formatVersion));
    }
    in.setSwap(swap);
    in.get<int64_t>();  // the data file's size and time: metadataFileAvailable's business
    in.get<int64_t>();
    in.get<uint64_t>();  // write id
    dataset.setName(in.getString());
    dataset.setLoaderName(in.getString());
    dataset.setLoaderVersion(in.get<int32_t>());
    dataset.setClientDataVersion(in.get<int32_t>());
    dataset.setClientDataNativeByteOrder(!swap);
    for (int64_t f = 0, files = in.count(); f < files; ++f) {
        std::string name = in.getString();
        bool native = in.get<int32_t>() != 0;
        int32_t fileVersion = in.get<int32_t>();
        auto file = std::make_shared<UniqueFilename>(name, native, fileVersion);
        in.getClientData(*file);
        dataset.addUniqueFilename(file);
    }
    for (int64_t z = 0, zones = in.count(); z < zones; ++z) {
        int32_t kind = in.get<int32_t>();
        std::string name = in.getString();
        int64_t sizes[5];
        for (int64_t& size : sizes)
            size = in.get<int64_t>();
        std::shared_ptr<MetadataZone> zone;
        switch (static_cast<MetadataZoneKind>(kind)) {
            case MetadataZoneKind::FETriangle:
                zone = dataset.addFETriangleZone(name, sizes[0], sizes[1]);
                break;
            case MetadataZoneKind::FEQuad:
                zone = dataset.addFEQuadZone(name, sizes[0], sizes[1]);
                break;
            case MetadataZoneKind::FETetra:
                zone = dataset.addFETetraZone(name, sizes[0], sizes[1]);
                break;
            case MetadataZoneKind::FEBrick:
                zone = dataset.addFEBrickZone(name, sizes[0], sizes[1]);
                break;
            case MetadataZoneKind::FELine:
                zone = dataset.addFELineZone(name, sizes[0], sizes[1]);
                break;
            case MetadataZoneKind::FEPolygon:
                zone = dataset.addFEPolygonZone(name, sizes[0], sizes[1], sizes[2], sizes[3], sizes[4]);
                break;
            case MetadataZoneKind::FEPolyhedron:
                zone = dataset.addFEPolyhedronZone(name, sizes[0], sizes[1], sizes[2], sizes[3], sizes[4]);
                break;
            case MetadataZoneKind::Unsupported:
                zone = dataset.addUnsupportedZone(name, sizes[0], sizes[1]);
                break;
            default:
                throw IOException("the metadata file is damaged (zone kind " + std::to_string(kind) + ")");
        }
        in.getClientData(*zone);
        for (int64_t v = 0, variables = in.count(); v < variables; ++v) {
            auto variable = zone->addVariable(in.getString());
            in.getClientData(*variable);
            bool known = in.get<int32_t>() != 0;
            double minimum = in.get<double>();
            double maximum = in.get<double>();
            if (known)
                variable->setRange(minimum, maximum);
        }
    }
}

DeferredMinMaxWriterFactory* MetadataDirector::variableMinMaxDeferredWriterFactory() {
    return &impl_->factory;
}

}  // namespace dataio
}  // namespace zorvane
