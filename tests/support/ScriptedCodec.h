#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/vfw/Vfw.h"

// A codec of the test's own, installed for one code as long as the object lives. It writes down
// what it is asked. Several may live, for different codes; decoders end before their codec does.
class ScriptedCodec {
public:
    explicit ScriptedCodec(DWORD handler);
    ScriptedCodec(const ScriptedCodec&) = delete;
    ScriptedCodec& operator=(const ScriptedCodec&) = delete;
    ~ScriptedCodec();

    // What it answers; by default it accepts everything and decodes nothing.
    std::function<LRESULT(const BITMAPINFOHEADER& input, const BITMAPINFOHEADER& output)> onQuery;
    std::function<LRESULT(const ICDECOMPRESS& picture)> onDecompress;
    bool refuses = false; // to be opened
    LRESULT beginAnswer = ICERR_OK;

    // "open", "query 24 64x48 -> 32 64x48", "begin", "end", "close"
    std::vector<std::string> calls;

    // The formats that it was begun with, as above without the word.
    std::string begun;

    // Of each picture it was to decode: its bytes, with a "*" in front for a key frame.
    std::vector<std::string> pictures;

private:
    static LRESULT Answer(DWORD_PTR id, HDRVR driver, UINT message, LPARAM first, LPARAM second);
    static LRESULT Open(DWORD handler);
    LRESULT Query(LPARAM first, LPARAM second);
    LRESULT Begin(LPARAM first, LPARAM second);
    LRESULT Decompress(const ICDECOMPRESS& picture);

    DWORD m_handler;
};
