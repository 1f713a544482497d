#include <KWFoundation/KWFile.h>

#include <samples/Samples.h>

#include <cstdio>
#include <exception>
#include <string_view>

// Writes the sample documents into a folder: kwsamples DIR [--heavy]. With --heavy it writes
// heavy.kwdoc alone, a million keys.

int main(int argc, char** argv) {
    const bool isHeavy = argc == 3 && std::string_view(argv[2]) == "--heavy";
    if (argc < 2 || argc > 3 || (argc == 3 && !isHeavy)) {
        std::fputs("usage: kwsamples DIR [--heavy]\n", stderr);
        return 2;
    }
    try {
        const std::filesystem::path folder = argv[1];
        if (isHeavy) {
            heavyDocument(1000, 1000).save(folder / "heavy.kwdoc", KWDocument::Form::binary);
            return 0;
        }
        for (const SampleDocument& sample : sampleDocuments())
            KWWriteFileAtomically(folder / sample.fileName, sample.data);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kwsamples: %s\n", error.what());
        return 3;
    }
}
