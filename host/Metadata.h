// The host's metadata library, as far as the add-on uses it.
//
// A metadata file keeps what a scan found, beside the data, so that the next
// load of the same file need not scan it again. Its format belongs to the host.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/ZorTypes.h"

namespace zorvane {
namespace dataio {

// Receives the range of one variable once it is known (when the values are
// loaded), so that the range can be written into the metadata file later.
// Reference counted: the factory that made a writer holds one reference; a
// holder that keeps a writer longer than the factory calls retain and release.
class ZOR_HOST_API DeferredMinMaxWriter {
  public:
    DeferredMinMaxWriter() = default;
    DeferredMinMaxWriter(const DeferredMinMaxWriter&) = delete;
    DeferredMinMaxWriter& operator=(const DeferredMinMaxWriter&) = delete;
    virtual ~DeferredMinMaxWriter();
    // Records the range; the last call wins.
    virtual void setMinMax(double minimum, double maximum) = 0;
    void retain() { refCount_.fetch_add(1, std::memory_order_relaxed); }
    // Drops one reference; the last one deletes the writer.
    void release() {
        if (refCount_.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }

  private:
    std::atomic<int32_t> refCount_{1};
};

// Hands out deferred writers during a scan whose result will be stored.
class ZOR_HOST_API DeferredMinMaxWriterFactory {
  public:
    virtual ~DeferredMinMaxWriterFactory();
    // A new writer; the factory keeps a reference to it. Never null.
    virtual DeferredMinMaxWriter* createDeferredMinMaxWriter() = 0;
};

// ---- Exceptions -------------------------------------------------------------

// A stream or file could not be read or written, or a block ended early.
class ZOR_HOST_API IOException : public std::runtime_error {
  public:
    explicit IOException(const std::string& what);
    ~IOException() override;
};

// A metadata file of a version this library cannot read.
class ZOR_HOST_API InvalidMetadataVersionException : public std::runtime_error {
  public:
    explicit InvalidMetadataVersionException(const std::string& what);
    ~InvalidMetadataVersionException() override;
};

// ---- Streams ----------------------------------------------------------------

class ZOR_HOST_API InputStream {
  public:
    virtual ~InputStream();
    // Reads up to size bytes; returns how many, 0 at the end. Throws IOException.
    virtual size_t read(void* buffer, size_t size) = 0;
};

class ZOR_HOST_API OutputStream {
  public:
    virtual ~OutputStream();
    // Writes all size bytes. Throws IOException.
    virtual void write(const void* data, size_t size) = 0;
    // Hands what is buffered to the file. Throws IOException.
    virtual void flush() = 0;
};

// Reads a file. The constructor throws IOException when it cannot be opened.
class ZOR_HOST_API FileInputStream : public InputStream {
  public:
    explicit FileInputStream(const std::string& path);
    ~FileInputStream() override;
    size_t read(void* buffer, size_t size) override;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// Reads another stream in large blocks.
class ZOR_HOST_API BufferedInputStream : public InputStream {
  public:
    explicit BufferedInputStream(std::shared_ptr<InputStream> source, size_t bufferSize = 65536);
    ~BufferedInputStream() override;
    size_t read(void* buffer, size_t size) override;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// Writes a file, made anew. The constructor throws IOException when it cannot be made.
class ZOR_HOST_API FileOutputStream : public OutputStream {
  public:
    explicit FileOutputStream(const std::string& path);
    ~FileOutputStream() override;
    void write(const void* data, size_t size) override;
    void flush() override;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// Writes another stream in large blocks; the destructor flushes, ignoring errors.
class ZOR_HOST_API BufferedOutputStream : public OutputStream {
  public:
    explicit BufferedOutputStream(std::shared_ptr<OutputStream> target, size_t bufferSize = 65536);
    ~BufferedOutputStream() override;
    void write(const void* data, size_t size) override;
    void flush() override;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// ---- Client data --------------------------------------------------------------

// The block of a client data object: a sequence of 64-bit words with a read
// cursor. Words are stored as written, in the byte order of the machine that
// wrote them; a reader of the other byte order swaps them first.
class ZOR_HOST_API ClientDataBlock {
  public:
    ClientDataBlock();
    explicit ClientDataBlock(std::vector<int64_t> words);
    ~ClientDataBlock();
    // Appends one word.
    void putWord(int64_t word);
    // Appends strings: their count, then per string its length and one word per character.
    void putStrings(const std::vector<std::string>& strings);
    // The next word. Throws IOException past the end.
    int64_t getWord();
    // The next strings as putStrings wrote them. Throws IOException on a short or bad block.
    std::vector<std::string> getStrings();
    // True when the cursor has passed every word.
    bool atEnd() const;
    // Reverses the bytes of every word (a block of the other byte order).
    void swapWordBytes();
    const std::vector<int64_t>& words() const;

  private:
    std::vector<int64_t> words_;  // the block
    size_t cursor_ = 0;           // next word to read
};

// What a client data object must do so that the library can keep it as an
// opaque block beside a file entry, a zone or a variable.
class ZOR_HOST_API MetadataClientDataInterface {
  public:
    virtual ~MetadataClientDataInterface();
    // Appends the object's words to the block.
    virtual void writeBlock(ClientDataBlock& block) const = 0;
    // Fills the object from the block's words. Throws IOException when they do not fit.
    virtual void readBlock(ClientDataBlock& block) = 0;
};

// An item of a metadata data set that may carry a client data block.
class ZOR_HOST_API ClientDataHolder {
  public:
    ClientDataHolder();
    virtual ~ClientDataHolder();
    // Stores the object's block, replacing one stored before.
    void submitClientData(const MetadataClientDataInterface& clientData);
    // Fills the object from the stored block, swapped first when the block is
    // of the other byte order and swap is true. Throws IOException when none is stored.
    void fetchClientData(MetadataClientDataInterface& clientData, bool swap = false) const;
    bool hasClientData() const;
    // The stored words, as written (empty when none).
    const std::vector<int64_t>& clientDataWords() const;
    void setClientDataWords(std::vector<int64_t> words);

  private:
    std::vector<int64_t> words_;  // the block; empty with hasClientData_ false when none
    bool hasClientData_ = false;
};

// ---- Data set descriptions ------------------------------------------------------------

// A file that a data set was read from, by its bare name.
class ZOR_HOST_API UniqueFilename : public ClientDataHolder {
  public:
    // nativeByteOrder: the file's data are in the byte order of this machine.
    UniqueFilename(const std::string& name, bool nativeByteOrder, int32_t version);
    ~UniqueFilename() override;
    const std::string& name() const;
    bool isNativeByteOrder() const;
    int32_t version() const;

  private:
    std::string name_;
    bool nativeByteOrder_;
    int32_t version_;
};

// The range of one variable in one zone, known or not yet.
class ZOR_HOST_API VariableMinMax : public ClientDataHolder {
  public:
    explicit VariableMinMax(const std::string& name);
    ~VariableMinMax() override;
    const std::string& name() const;
    // True when a range is known (given, or come in through the writer).
    bool hasRange() const;
    double minimum() const;
    double maximum() const;
    void setRange(double minimum, double maximum);
    // Binds a deferred writer (retained): the range it receives, even after
    // the metadata file was written, ends up in the file.
    void bindDeferredWriter(DeferredMinMaxWriter* writer);
    DeferredMinMaxWriter* deferredWriter() const;

  private:
    std::string name_;
    bool hasRange_ = false;
    double minimum_ = 0.0;
    double maximum_ = 0.0;
    DeferredMinMaxWriter* writer_ = nullptr;  // retained; null when none
};

// Kinds of zone descriptions.
enum class MetadataZoneKind : int32_t {
    FETriangle = 1,
    FEQuad = 2,
    FETetra = 3,
    FEBrick = 4,
    FELine = 5,
    FEPolygon = 6,
    FEPolyhedron = 7,
    Unsupported = 255
};

// One zone of a data set: its kind, sizes, name, variables and client data.
class ZOR_HOST_API MetadataZone : public ClientDataHolder {
  public:
    MetadataZone(MetadataZoneKind kind, const std::string& name, int64_t numNodes, int64_t numElements,
                 int64_t numFaces, int64_t numFaceNodes, int64_t numBoundaryConnections);
    ~MetadataZone() override;
    MetadataZoneKind kind() const;
    const std::string& name() const;
    int64_t numNodes() const;
    int64_t numElements() const;
    int64_t numFaces() const;                // polytopes; 0 otherwise
    int64_t numFaceNodes() const;            // polytopes; 0 otherwise
    int64_t numBoundaryConnections() const;  // polytopes; 0 otherwise
    // Adds a variable of that name to the zone.
    std::shared_ptr<VariableMinMax> addVariable(const std::string& name);
    // The variables in the order they were added.
    const std::vector<std::shared_ptr<VariableMinMax>>& variables() const;

  private:
    MetadataZoneKind kind_;
    std::string name_;
    int64_t numNodes_, numElements_, numFaces_, numFaceNodes_, numBoundaryConnections_;
    std::vector<std::shared_ptr<VariableMinMax>> variables_;
};

// What a metadata file holds: the loader, the files, the zones and the client
// data of all of them.
class ZOR_HOST_API MetadataDataset {
  public:
    // clientDataVersion: the version of the loader's client data objects.
    explicit MetadataDataset(int32_t clientDataVersion);
    ~MetadataDataset();
    int32_t clientDataVersion() const;
    // Set by a read: the version of the client data stored in the file.
    void setClientDataVersion(int32_t clientDataVersion);
    void setName(const std::string& name);
    const std::string& name() const;
    void setLoaderName(const std::string& loaderName);
    const std::string& loaderName() const;
    void setLoaderVersion(int32_t loaderVersion);
    int32_t loaderVersion() const;
    void addUniqueFilename(std::shared_ptr<UniqueFilename> file);
    const std::vector<std::shared_ptr<UniqueFilename>>& uniqueFilenames() const;
    // Zone descriptions, each appended to zones().
    std::shared_ptr<MetadataZone> addFETriangleZone(const std::string& name, int64_t numNodes,
                                                    int64_t numElements);
    std::shared_ptr<MetadataZone> addFEQuadZone(const std::string& name, int64_t numNodes,
                                                int64_t numElements);
    std::shared_ptr<MetadataZone> addFETetraZone(const std::string& name, int64_t numNodes,
                                                 int64_t numElements);
    std::shared_ptr<MetadataZone> addFEBrickZone(const std::string& name, int64_t numNodes,
                                                 int64_t numElements);
    std::shared_ptr<MetadataZone> addFELineZone(const std::string& name, int64_t numNodes,
                                                int64_t numElements);
    std::shared_ptr<MetadataZone> addFEPolygonZone(const std::string& name, int64_t numNodes,
                                                   int64_t numElements, int64_t numFaces,
                                                   int64_t numFaceNodes, int64_t numBoundaryConnections);
    std::shared_ptr<MetadataZone> addFEPolyhedronZone(const std::string& name, int64_t numNodes,
                                                      int64_t numElements, int64_t numFaces,
                                                      int64_t numFaceNodes, int64_t numBoundaryConnections);
    std::shared_ptr<MetadataZone> addUnsupportedZone(const std::string& name, int64_t numNodes,
                                                     int64_t numElements);
    // The zones in the order they were added (or read).
    const std::vector<std::shared_ptr<MetadataZone>>& zones() const;
    // False when the data set was read from a file written on a machine of the
    // other byte order: client data blocks must then be swapped.
    bool isClientDataNativeByteOrder() const;
    void setClientDataNativeByteOrder(bool native);

  private:
    int32_t clientDataVersion_;
    std::string name_;
    std::string loaderName_;
    int32_t loaderVersion_ = 0;
    std::vector<std::shared_ptr<UniqueFilename>> files_;
    std::vector<std::shared_ptr<MetadataZone>> zones_;
    bool clientDataNativeByteOrder_ = true;
};

// Finds, reads and writes the metadata file that belongs to a data file. The
// file lies beside the data file; it is stale, and not available, when the
// data file changed (size or time) after it was written.
class ZOR_HOST_API MetadataDirector {
  public:
    MetadataDirector();
    ~MetadataDirector();
    MetadataDirector(const MetadataDirector&) = delete;
    MetadataDirector& operator=(const MetadataDirector&) = delete;
    // True when a metadata file for basePath + bareName exists and is not stale.
    bool metadataFileAvailable(const std::string& basePath, const std::string& bareName) const;
    // The name of the metadata file of basePath + bareName.
    std::string metadataFilename(const std::string& basePath, const std::string& bareName) const;
    // The name to write the metadata file of basePath + bareName to; removes a
    // stale one and remembers the data file's size and time for the write.
    std::string initializeMetadataFilename(const std::string& basePath, const std::string& bareName);
    // Fills the data set from a metadata file. Throws InvalidMetadataVersionException
    // for a file of another version, IOException for a damaged or short one.
    void read(std::shared_ptr<InputStream> input, MetadataDataset& dataset);
    // Writes the data set, binding deferred writers of its variables to their
    // place in the file. Throws IOException.
    void write(std::shared_ptr<OutputStream> output, const MetadataDataset& dataset);
    // The factory of deferred min/max writers for a scan; owned by the director.
    DeferredMinMaxWriterFactory* variableMinMaxDeferredWriterFactory();

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace dataio
}  // namespace zorvane
