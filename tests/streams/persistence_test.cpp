// Object persistence through the exports: the system's standard font object
// round-trips through every save/load pair; a recording object and a fake
// stream pin the results of every step, the injected faults, and that every
// stream and interface the library makes or asks for is released again.
#include <windows.h>
#include <ocidl.h>
#include <olectl.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "MvSup2u.h"
#include "common/fake_stream.h"
#include "common/memory_streams.h"

namespace mvsup::test {
namespace {

using Method = FakeStream::Method;
const HRESULT kInjected = STG_E_READFAULT;

// An object whose IPersistStream records what it is asked to do. It keeps a
// reference to the stream of its last Save or Load, so that a test can find
// out whether the library released its own reference to that stream.
class RecordingObject final : public IPersistStream {
 public:
  std::string save_bytes = "saved by the recording object";
  HRESULT save_result = S_OK;  // returned after writing save_bytes
  HRESULT load_result = S_OK;  // returned after reading everything
  bool answers_persistence = true;

  int saves = 0;
  int loads = 0;
  BOOL clear_dirty = -1;
  std::string loaded;

  RecordingObject() = default;
  RecordingObject(const RecordingObject&) = delete;
  RecordingObject& operator=(const RecordingObject&) = delete;
  ~RecordingObject() {
    if (kept_) kept_->Release();
  }

  ULONG references() const { return references_; }
  // Gives up the kept stream: the count it reports then (0 when nobody else
  // holds it).
  ULONG release_kept_stream() {
    IStream* stream = std::exchange(kept_, nullptr);
    return stream ? stream->Release() : ~0u;
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid == IID_IUnknown || (answers_persistence && (iid == IID_IPersist || iid == IID_IPersistStream))) {
      *object = static_cast<IPersistStream*>(this);
      AddRef();
      return S_OK;
    }
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override { return --references_; }
  HRESULT STDMETHODCALLTYPE GetClassID(CLSID* clsid) override {
    *clsid = CLSID_NULL;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE IsDirty() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Load(IStream* stream) override {
    ++loads;
    keep(stream);
    char buffer[256];
    ULONG read = 0;
    while (SUCCEEDED(stream->Read(buffer, sizeof(buffer), &read)) && read != 0) loaded.append(buffer, read);
    return load_result;
  }
  HRESULT STDMETHODCALLTYPE Save(IStream* stream, BOOL clear) override {
    ++saves;
    clear_dirty = clear;
    keep(stream);
    ULONG written = 0;
    const HRESULT hr = stream->Write(save_bytes.data(), static_cast<ULONG>(save_bytes.size()), &written);
    return FAILED(hr) ? hr : save_result;
  }
  HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) override {
    size->QuadPart = save_bytes.size();
    return S_OK;
  }

 private:
  void keep(IStream* stream) {
    if (kept_) kept_->Release();
    kept_ = stream;
    kept_->AddRef();
  }
  ULONG references_ = 1;
  IStream* kept_ = nullptr;
};

// What the font object shows of its description.
struct FontTraits {
  std::wstring name;
  LONGLONG size = 0;
  BOOL bold = FALSE, italic = FALSE, underline = FALSE, strikethrough = FALSE;
  SHORT weight = 0, charset = 0;
  bool operator==(const FontTraits&) const = default;
};

std::ostream& operator<<(std::ostream& out, const FontTraits& font) {
  return out << std::string(font.name.begin(), font.name.end()) << " size " << font.size << " weight " << font.weight
             << " charset " << font.charset << " b/i/u/s " << font.bold << font.italic << font.underline
             << font.strikethrough;
}

FontTraits traits_of(IUnknown* object) {
  Held<IFont> font;
  EXPECT_EQ(object->QueryInterface(IID_IFont, reinterpret_cast<void**>(font.put())), S_OK);
  FontTraits traits;
  BSTR name = nullptr;
  CY size{};
  font->get_Name(&name);
  traits.name = name ? name : L"";
  SysFreeString(name);
  font->get_Size(&size);
  traits.size = size.int64;
  font->get_Bold(&traits.bold);
  font->get_Italic(&traits.italic);
  font->get_Underline(&traits.underline);
  font->get_Strikethrough(&traits.strikethrough);
  font->get_Weight(&traits.weight);
  font->get_Charset(&traits.charset);
  return traits;
}

IUnknown* make_font(const wchar_t* name, LONGLONG size, SHORT weight, BOOL italic, BOOL underline) {
  FONTDESC description{sizeof(FONTDESC), const_cast<LPOLESTR>(name), {}, weight, ANSI_CHARSET, italic, underline,
                       FALSE};
  description.cySize.int64 = size;
  IUnknown* font = nullptr;
  EXPECT_EQ(OleCreateFontIndirect(&description, IID_IUnknown, reinterpret_cast<void**>(&font)), S_OK);
  return font;
}

// What the font's own IPersistStream writes: the bytes the library must hand
// on unchanged.
std::string own_save(IUnknown* object) {
  Held<IPersistStream> persist;
  EXPECT_EQ(object->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(persist.put())), S_OK);
  Held<IStream> stream(memory_stream(""));
  EXPECT_EQ(persist->Save(stream.get(), FALSE), S_OK);
  return stream_bytes(stream.get());
}

class Persistence : public ComTest {};

// ---- the font object through every saver and every loader

struct Saver {
  const char* name;
  std::function<std::string(IUnknown*)> save;  // the bytes saved
};
struct Loader {
  const char* name;
  std::function<void(const std::string&, IUnknown*)> load;
};

const Saver kSavers[] = {
    {"SerializeObject",
     [](IUnknown* font) {
       Held<IStream> stream(memory_stream(""));
       ULONG size = 0xdeadbeef;
       EXPECT_EQ(SerializeObject(font, stream.get(), TRUE, &size), S_OK);
       EXPECT_EQ(stream_position(stream.get()), 0u);
       const std::string bytes = stream_bytes(stream.get());
       EXPECT_EQ(size, bytes.size());
       EXPECT_EQ(stream.release(), 0u);
       return bytes;
     }},
    {"SerializeObject2",
     [](IUnknown* font) {
       Held<IStream> stream;
       ULONG size = 0xdeadbeef;
       EXPECT_EQ(SerializeObject2(font, FALSE, &size, stream.put()), S_OK);
       if (!stream.get()) return std::string();
       EXPECT_EQ(stream_position(stream.get()), 0u);
       const std::string bytes = stream_bytes(stream.get());
       EXPECT_EQ(size, bytes.size());
       EXPECT_EQ(stream.release(), 0u) << "the caller holds the only reference";
       return bytes;
     }},
    {"SaveObjectToHGlobal",
     [](IUnknown* font) {
       HGLOBAL memory = reinterpret_cast<HGLOBAL>(1);
       ULONG size = 0xdeadbeef;
       EXPECT_EQ(SaveObjectToHGlobal(font, TRUE, &memory, &size), S_OK);
       const std::string bytes = global_bytes(memory, size);
       EXPECT_EQ(GlobalFree(memory), nullptr);
       return bytes;
     }},
};

// The object's bytes lie between others; the copy starts at the current
// position and leaves the source after what it took.
void load_between_other_bytes(HRESULT(WINAPI* load)(IStream*, ULONG, IUnknown*), const std::string& bytes,
                              IUnknown* font) {
  Held<IStream> source(memory_stream("abc" + bytes + "trailing", 3));
  EXPECT_EQ(load(source.get(), static_cast<ULONG>(bytes.size()), font), S_OK);
  EXPECT_EQ(stream_position(source.get()), 3 + bytes.size());
  EXPECT_EQ(source.release(), 0u);
}

const Loader kLoaders[] = {
    {"LoadObjectFromHGlobal",
     [](const std::string& bytes, IUnknown* font) {
       HGLOBAL memory = global_block(bytes);
       EXPECT_EQ(LoadObjectFromHGlobal(memory, FALSE, font), S_OK);
       // Not deleted on release: still the caller's, unchanged.
       EXPECT_EQ(global_bytes(memory, bytes.size()), bytes);
       EXPECT_EQ(GlobalFree(memory), nullptr);
     }},
    {"LoadObjectFromStream",
     [](const std::string& bytes, IUnknown* font) { load_between_other_bytes(LoadObjectFromStream, bytes, font); }},
    {"DeserializeObject",
     [](const std::string& bytes, IUnknown* font) { load_between_other_bytes(DeserializeObject, bytes, font); }},
};

TEST_F(Persistence, FontRoundTripsThroughEverySaveLoadPair) {
  // Faces that the test machine has: a font reports the face it was
  // realised with, and a missing face becomes the default one.
  Held<IUnknown> original(make_font(L"DejaVu Serif", 135000, FW_BOLD, TRUE, TRUE));
  const FontTraits wanted = traits_of(original.get());
  const std::string own = own_save(original.get());
  ASSERT_FALSE(own.empty());
  const ULONG original_references = reference_count(original.get());

  for (const Saver& saver : kSavers) {
    for (const Loader& loader : kLoaders) {
      SCOPED_TRACE(testing::Message() << saver.name << " -> " << loader.name);
      const std::string bytes = saver.save(original.get());
      EXPECT_EQ(bytes, own) << "the saved form is exactly what the object writes";
      EXPECT_EQ(reference_count(original.get()), original_references);

      Held<IUnknown> copy(make_font(L"DejaVu Sans Mono", 80000, FW_NORMAL, FALSE, FALSE));
      ASSERT_NE(traits_of(copy.get()).name, wanted.name);
      const ULONG copy_references = reference_count(copy.get());
      loader.load(bytes, copy.get());
      EXPECT_EQ(traits_of(copy.get()), wanted);
      EXPECT_EQ(reference_count(copy.get()), copy_references);
    }
  }
}

TEST_F(Persistence, SerializeObjectCountsBytesAlreadyInTheStreamAndRewinds) {
  Held<IUnknown> font(make_font(L"Tahoma", 100000, FW_NORMAL, FALSE, FALSE));
  const std::string own = own_save(font.get());
  Held<IStream> stream(memory_stream("0123456789", 10));
  ULONG size = 0;
  EXPECT_EQ(SerializeObject(font.get(), stream.get(), FALSE, &size), S_OK);
  EXPECT_EQ(size, 10 + own.size());
  EXPECT_EQ(stream_position(stream.get()), 0u);
  EXPECT_EQ(stream_bytes(stream.get()), "0123456789" + own);
  // Without a size the stream is not asked for one.
  RecordingObject object;
  FakeStream fake;
  EXPECT_EQ(SerializeObject(&object, &fake, TRUE, nullptr), S_OK);
  EXPECT_EQ(object.clear_dirty, TRUE);
  EXPECT_EQ(fake.calls(Method::Stat), 0);
  EXPECT_EQ(fake.position(), 0u);
}

// Every step of SerializeObject against a stream that fails it; the object
// and the stream get back every reference the library took.
TEST_F(Persistence, SerializeObjectReportsEachFailingStep) {
  struct Case {
    const char* what;
    Method method;            // fails on the stream, or Count for the object's Save
    HRESULT result;
    ULONG size;               // reported size
    int stats, seeks;
  };
  const std::string payload = RecordingObject().save_bytes;
  const ULONG full = static_cast<ULONG>(payload.size());
  const Case cases[] = {
      {"save fails", Method::Count, E_ACCESSDENIED, 0, 0, 0},
      {"size query fails", Method::Stat, kInjected, 0, 1, 1},
      {"seek fails", Method::Seek, kInjected, full, 1, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    RecordingObject object;
    FakeStream stream;
    if (c.method == Method::Count)
      object.save_result = c.result;
    else
      stream.fail(c.method, c.result);
    ULONG size = 0xdeadbeef;
    EXPECT_EQ(SerializeObject(&object, &stream, FALSE, &size), c.result);
    EXPECT_EQ(size, c.size);
    EXPECT_EQ(stream.calls(Method::Stat), c.stats);
    EXPECT_EQ(stream.calls(Method::Seek), c.seeks);
    EXPECT_EQ(object.references(), 1u);
    EXPECT_EQ(object.release_kept_stream(), 1u);
  }

  // The font's own Save fails on a stream that stores only part of what it
  // is given; that failure comes back, and nothing is counted.
  Held<IUnknown> font(make_font(L"Tahoma", 100000, FW_NORMAL, FALSE, FALSE));
  const ULONG references = reference_count(font.get());
  FakeStream short_stream;
  short_stream.limit_writes(3);
  ULONG size = 0xdeadbeef;
  EXPECT_TRUE(FAILED(SerializeObject(font.get(), &short_stream, FALSE, &size)));
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(short_stream.calls(Method::Seek), 0);
  EXPECT_EQ(short_stream.references(), 1u);
  EXPECT_EQ(reference_count(font.get()), references);
}

TEST_F(Persistence, ObjectsWithoutPersistenceGiveTheQueryFailure) {
  RecordingObject object;
  object.answers_persistence = false;
  FakeStream stream("some bytes");

  EXPECT_EQ(SerializeObject(&object, &stream, FALSE, nullptr), E_NOINTERFACE);
  Held<IStream> made;
  EXPECT_EQ(SerializeObject2(&object, FALSE, nullptr, made.put()), E_NOINTERFACE);
  EXPECT_NE(made.get(), nullptr) << "the new stream is handed out even when the save fails";
  if (made.get()) {
    EXPECT_EQ(made.release(), 0u);
  }

  HGLOBAL memory = reinterpret_cast<HGLOBAL>(1);
  ULONG size = 0xdeadbeef;
  EXPECT_EQ(SaveObjectToHGlobal(&object, FALSE, &memory, &size), E_NOINTERFACE);
  EXPECT_EQ(memory, nullptr);
  EXPECT_EQ(size, 0u);

  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 4);
  EXPECT_EQ(LoadObjectFromHGlobal(block, FALSE, &object), E_NOINTERFACE);
  EXPECT_EQ(GlobalFree(block), nullptr);
  EXPECT_EQ(LoadObjectFromStream(&stream, 4, &object), E_NOINTERFACE);
  EXPECT_EQ(DeserializeObject(&stream, 4, &object), E_NOINTERFACE);

  EXPECT_EQ(object.saves + object.loads, 0);
  EXPECT_EQ(object.references(), 1u);
  EXPECT_EQ(stream.references(), 1u);
}

TEST_F(Persistence, SerializeObject2HandsOutItsStreamWhateverTheSaveGives) {
  // A null object: nothing happens at all.
  IStream* untouched = reinterpret_cast<IStream*>(static_cast<uintptr_t>(0xdeadbeef));
  ULONG size = 7;
  EXPECT_EQ(SerializeObject2(nullptr, FALSE, &size, &untouched), S_OK);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(untouched), 0xdeadbeefu);
  EXPECT_EQ(size, 7u);

  RecordingObject object;
  object.save_result = E_ACCESSDENIED;
  Held<IStream> stream;
  size = 7;
  EXPECT_EQ(SerializeObject2(&object, TRUE, &size, stream.put()), E_ACCESSDENIED);
  ASSERT_NE(stream.get(), nullptr);
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(stream_bytes(stream.get()), object.save_bytes);
  EXPECT_EQ(object.release_kept_stream(), 1u) << "only the caller's reference is left";
  EXPECT_EQ(stream.release(), 0u);
  EXPECT_EQ(object.references(), 1u);
}

TEST_F(Persistence, SaveObjectToHGlobalHandsOutWhatWasWrittenAndReleasesItsStream) {
  // Save's result is not looked at: the bytes written before the failure
  // are handed out.
  RecordingObject failing;
  failing.save_bytes = "part";
  failing.save_result = E_FAIL;
  HGLOBAL memory = nullptr;
  ULONG size = 0;
  EXPECT_EQ(SaveObjectToHGlobal(&failing, FALSE, &memory, &size), S_OK);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(global_bytes(memory, size), "part");
  EXPECT_EQ(failing.release_kept_stream(), 0u) << "the library's stream was not released";
  EXPECT_EQ(global_bytes(memory, size), "part") << "the stream's release freed the memory";
  EXPECT_EQ(GlobalFree(memory), nullptr);

  // Without a size the block is handed out all the same.
  RecordingObject object;
  memory = nullptr;
  EXPECT_EQ(SaveObjectToHGlobal(&object, FALSE, &memory, nullptr), S_OK);
  EXPECT_EQ(global_bytes(memory, object.save_bytes.size()), object.save_bytes);
  EXPECT_EQ(GlobalFree(memory), nullptr);
  EXPECT_EQ(object.references(), 1u);
}

TEST_F(Persistence, LoadersReleaseTheStreamsTheyMake) {
  using Call = std::function<HRESULT(RecordingObject&)>;
  const std::string bytes = "object bytes";
  const auto from_fake = [&](HRESULT(WINAPI * load)(IStream*, ULONG, IUnknown*), RecordingObject& object) {
    FakeStream source(bytes + "more");
    const HRESULT hr = load(&source, static_cast<ULONG>(bytes.size()), &object);
    EXPECT_EQ(source.references(), 1u);
    return hr;
  };
  const std::pair<const char*, Call> loaders[] = {
      {"LoadObjectFromHGlobal, deleted on release",
       [&](RecordingObject& object) {
         return LoadObjectFromHGlobal(global_block(bytes), TRUE, &object);
       }},
      {"LoadObjectFromStream", [&](RecordingObject& object) { return from_fake(LoadObjectFromStream, object); }},
      {"DeserializeObject", [&](RecordingObject& object) { return from_fake(DeserializeObject, object); }},
  };
  for (const auto& [name, load] : loaders) {
    for (HRESULT load_result : {S_OK, S_FALSE, E_ACCESSDENIED}) {
      SCOPED_TRACE(testing::Message() << name << ", Load gives 0x" << std::hex << load_result);
      RecordingObject object;
      object.load_result = load_result;
      EXPECT_EQ(load(object), load_result);
      EXPECT_EQ(object.loaded, bytes) << "loaded from the copy's start";
      EXPECT_EQ(object.release_kept_stream(), 0u);
      EXPECT_EQ(object.references(), 1u);
    }
  }
}

// The two copying loaders side by side: LoadObjectFromStream loads only a
// copy of exactly the bytes asked for; DeserializeObject loads whatever the
// copy brought and passes the copy's failure on.
TEST_F(Persistence, CopyingLoadersDifferInWhatTheyAccept) {
  struct Outcome {
    HRESULT hr;
    const char* loaded;  // null: Load was not called
  };
  struct Case {
    const char* what;
    ULONG count;
    std::function<void(FakeStream&)> arrange;
    Outcome load_object_from_stream, deserialize_object;
  };
  const Case cases[] = {
      {"count beyond the source", 100, [](FakeStream&) {}, {E_FAIL, nullptr}, {S_OK, "cdef"}},
      {"copy reports fewer bytes", 4, [](FakeStream& s) { s.limit_copies(3); }, {E_FAIL, nullptr}, {S_OK, "cde"}},
      {"copy fails", 3, [](FakeStream& s) { s.fail(Method::CopyTo, kInjected); }, {E_FAIL, nullptr},
       {kInjected, nullptr}},
      {"count of 0", 0, [](FakeStream&) {}, {S_OK, ""}, {S_OK, ""}},
      {"exact count", 3, [](FakeStream&) {}, {S_OK, "cde"}, {S_OK, "cde"}},
  };
  for (const Case& c : cases) {
    for (const bool deserialize : {false, true}) {
      SCOPED_TRACE(testing::Message() << c.what << (deserialize ? ", DeserializeObject" : ", LoadObjectFromStream"));
      const Outcome& wanted = deserialize ? c.deserialize_object : c.load_object_from_stream;
      RecordingObject object;
      FakeStream source("abcdef");
      source.set_position(2);
      c.arrange(source);
      EXPECT_EQ((deserialize ? DeserializeObject : LoadObjectFromStream)(&source, c.count, &object), wanted.hr);
      EXPECT_EQ(object.loads, wanted.loaded ? 1 : 0);
      EXPECT_EQ(object.loaded, wanted.loaded ? wanted.loaded : "");
      // Only DeserializeObject leaves the source alone for a count of 0.
      EXPECT_EQ(source.total_calls() == 0, deserialize && c.count == 0);
      EXPECT_EQ(source.references(), 1u);
      EXPECT_EQ(object.references(), 1u);
    }
  }
}

TEST_F(Persistence, CopyStreamCopiesFromBothPositions) {
  FakeStream source("0123456789");
  FakeStream target("abcdef");
  EXPECT_EQ(CopyStream(&source, &target, 0), S_OK);
  EXPECT_EQ(CopyStream(nullptr, nullptr, 0), S_OK);
  EXPECT_EQ(source.total_calls() + target.total_calls(), 0) << "a count of 0 touches neither stream";

  source.set_position(4);
  target.set_position(2);
  EXPECT_EQ(CopyStream(&source, &target, 3), S_OK);
  EXPECT_EQ(target.bytes(), "ab456f");
  EXPECT_EQ(source.position(), 7u);
  EXPECT_EQ(target.position(), 5u);

  source.fail(Method::CopyTo, kInjected);
  EXPECT_EQ(CopyStream(&source, &target, 3), kInjected);
  EXPECT_EQ(CopyStream(&source, nullptr, 3), E_POINTER);
  EXPECT_EQ(CopyStream(nullptr, &target, 3), E_POINTER);
  EXPECT_EQ(source.references(), 1u);
  EXPECT_EQ(target.references(), 1u);
}

TEST_F(Persistence, CopyStreamToHeapHandsOutOnlyAFullRead) {
  const HGLOBAL sentinel = reinterpret_cast<HGLOBAL>(1);
  {
    FakeStream source("0123456789");
    source.set_position(3);
    HGLOBAL memory = sentinel;
    EXPECT_EQ(CopyStreamToHeap(&source, 4, &memory), S_OK);
    ASSERT_NE(memory, nullptr);
    EXPECT_EQ(GlobalLock(memory), memory) << "a fixed block";
    GlobalUnlock(memory);
    EXPECT_EQ(global_bytes(memory, 4), "3456");
    EXPECT_EQ(GlobalFree(memory), nullptr);
  }
  struct Case {
    const char* what;
    std::function<void(FakeStream&)> arrange;
    ULONG count;
  };
  const Case failures[] = {
      {"more than the stream holds", [](FakeStream&) {}, 11},
      {"short read", [](FakeStream& s) { s.limit_reads(3); }, 4},
      {"full read that says S_FALSE", [](FakeStream& s) { s.limit_reads(4, S_FALSE); }, 4},
      {"failed read", [](FakeStream& s) { s.fail(Method::Read, kInjected); }, 4},
  };
  for (const Case& c : failures) {
    SCOPED_TRACE(c.what);
    FakeStream source("0123456789");
    c.arrange(source);
    HGLOBAL memory = sentinel;
    EXPECT_EQ(CopyStreamToHeap(&source, c.count, &memory), E_FAIL);
    EXPECT_EQ(memory, nullptr);
    EXPECT_EQ(source.references(), 1u);
  }
  FakeStream source("0123456789");
  HGLOBAL memory = sentinel;
  EXPECT_EQ(CopyStreamToHeap(&source, 0, &memory), E_INVALIDARG);
  EXPECT_EQ(memory, nullptr);
  EXPECT_EQ(source.total_calls(), 0);
  EXPECT_EQ(CopyStreamToHeap(&source, 4, nullptr), E_POINTER);
  EXPECT_EQ(CopyStreamToHeap(nullptr, 4, &memory), E_POINTER);
}

TEST_F(Persistence, GetStreamLengthGivesTheLow32Bits) {
  FakeStream stream("abc");
  ULONG size = 0;
  EXPECT_EQ(GetStreamLength(&stream, &size), S_OK);
  EXPECT_EQ(size, 3u);
  stream.report_size(0x100000010ull);
  EXPECT_EQ(GetStreamLength(&stream, &size), S_OK);
  EXPECT_EQ(size, 0x10u);
  stream.fail(Method::Stat, kInjected);
  size = 0xdeadbeef;
  EXPECT_EQ(GetStreamLength(&stream, &size), kInjected);
  EXPECT_EQ(size, 0xdeadbeefu) << "left as it was on failure";
  EXPECT_EQ(GetStreamLength(&stream, nullptr), E_POINTER);
  EXPECT_EQ(stream.references(), 1u);
}

TEST_F(Persistence, SerializeStringPropWritesTheBytesAsGiven) {
  for (auto* serialize : {&SerializeStringProp, &SerializeStringPropA}) {
    FakeStream stream("abcd");
    stream.set_position(2);
    const wchar_t text[] = L"XY";
    EXPECT_EQ(serialize(sizeof(text), text, &stream), S_OK);
    EXPECT_EQ(stream.bytes(), std::string("abX\0Y\0\0\0", 8));
    EXPECT_EQ(serialize(2, "zz", &stream), S_OK);
    EXPECT_EQ(stream.bytes(), std::string("abX\0Y\0\0\0zz", 10));

    EXPECT_EQ(serialize(5, nullptr, &stream), S_OK);
    EXPECT_EQ(stream.calls(Method::Write), 2) << "null text writes nothing";
    EXPECT_EQ(serialize(2, "zz", nullptr), E_POINTER);

    // The result is Write's own: a short write it calls a success is one.
    stream.limit_writes(1);
    EXPECT_EQ(serialize(2, "qq", &stream), S_OK);
    EXPECT_EQ(stream.bytes().size(), 11u);
    stream.fail(Method::Write, STG_E_MEDIUMFULL);
    EXPECT_EQ(serialize(2, "qq", &stream), STG_E_MEDIUMFULL);
    EXPECT_EQ(stream.references(), 1u);
  }
}

TEST_F(Persistence, NullArgumentsGiveTheirDocumentedResults) {
  RecordingObject object;
  FakeStream stream("abc");
  ULONG size = 0xdeadbeef;
  EXPECT_EQ(SerializeObject(nullptr, &stream, FALSE, &size), E_POINTER);
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(SerializeObject(&object, nullptr, FALSE, &size), E_POINTER);
  EXPECT_EQ(SerializeObject2(&object, FALSE, &size, nullptr), E_POINTER);
  EXPECT_EQ(SaveObjectToHGlobal(&object, FALSE, nullptr, &size), E_POINTER);
  HGLOBAL memory = reinterpret_cast<HGLOBAL>(1);
  EXPECT_EQ(SaveObjectToHGlobal(nullptr, FALSE, &memory, &size), E_POINTER);
  EXPECT_EQ(memory, nullptr);
  EXPECT_EQ(LoadObjectFromStream(nullptr, 3, &object), E_POINTER);
  EXPECT_EQ(LoadObjectFromStream(&stream, 3, nullptr), E_POINTER);
  EXPECT_EQ(DeserializeObject(nullptr, 3, &object), E_POINTER);
  EXPECT_EQ(DeserializeObject(&stream, 3, nullptr), E_POINTER);
  EXPECT_EQ(stream.total_calls(), 0);
  // Null memory is refused before anything is made; a null object still
  // lets the stream take the block, so that deleteOnRelease holds.
  EXPECT_EQ(LoadObjectFromHGlobal(nullptr, TRUE, &object), E_INVALIDARG);
  EXPECT_EQ(LoadObjectFromHGlobal(global_block("bytes"), TRUE, nullptr), E_POINTER);
  EXPECT_EQ(object.saves + object.loads, 0);
  EXPECT_EQ(object.references(), 1u);
}

}  // namespace
}  // namespace mvsup::test
