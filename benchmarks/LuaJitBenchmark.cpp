#include "SampleExpressions.h"

#include <benchmark/benchmark.h>

#include <lua.hpp>
#include <stdexcept>
#include <string>
#include <vector>

// LuaJIT, with one call for each value, as a host of expressions would do, and with a loop of its
// own over arrays, which it compiles to machine code.

namespace {

class Lua {
  public:
    Lua() : _state(luaL_newstate()) { luaL_openlibs(_state); }
    ~Lua() { lua_close(_state); }
    Lua(const Lua&) = delete;
    Lua& operator=(const Lua&) = delete;

    lua_State* state() const { return _state; }

    /// Leaves what the text returns on the stack.
    void run(const std::string& text) const {
        if (luaL_loadstring(_state, text.c_str()) != 0 || lua_pcall(_state, 0, 1, 0) != 0)
            throw std::runtime_error(lua_tostring(_state, -1));
    }

  private:
    lua_State* _state;
};

const char* const names = "local sin, cos, exp, log, sqrt, abs = math.sin, math.cos, math.exp, "
                          "math.log, math.sqrt, math.abs\n";

std::string functionOf(const benchmark::State& state) {
    return std::string(names) + "return function(t) return " +
           KWSampleFormulaOf(state.range(0)).theirs + " end";
}

void luaJit(benchmark::State& state) {
    const Lua lua;
    lua.run(functionOf(state));
    KWEvaluateFormula(state, [&](float t) {
        lua_pushvalue(lua.state(), -1);
        lua_pushnumber(lua.state(), static_cast<double>(t));
        lua_call(lua.state(), 1, 1);
        const double value = lua_tonumber(lua.state(), -1);
        lua_pop(lua.state(), 1);
        return value;
    });
}

void luaJitBatch(benchmark::State& state) {
    const Lua lua;
    lua.run(std::string(names) +
            "local ffi = require('ffi')\n"
            "return function(t, v, n)\n"
            "  local times, values = ffi.cast('const float*', t), ffi.cast('float*', v)\n"
            "  for i = 0, n - 1 do local t = times[i]; values[i] = " +
            KWSampleFormulaOf(state.range(0)).theirs + " end\nend");
    std::vector<float> times = KWSampleFormulaTimes();
    std::vector<float> values(times.size());
    for (auto _ : state) {
        lua_pushvalue(lua.state(), -1);
        lua_pushlightuserdata(lua.state(), times.data());
        lua_pushlightuserdata(lua.state(), values.data());
        lua_pushinteger(lua.state(), static_cast<lua_Integer>(times.size()));
        lua_call(lua.state(), 3, 0);
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
    }
    KWCountFormulaValues(state);
}

/// From the text to the first value.
void luaJitSetting(benchmark::State& state) {
    const Lua lua;
    const std::string text = functionOf(state);
    for (auto _ : state) {
        lua.run(text);
        lua_pushnumber(lua.state(), 1);
        lua_call(lua.state(), 1, 1);
        benchmark::DoNotOptimize(lua_tonumber(lua.state(), -1));
        lua_pop(lua.state(), 1);
    }
}

BENCHMARK(luaJit)->DenseRange(1, 3);
BENCHMARK(luaJitBatch)->DenseRange(1, 3);
BENCHMARK(luaJitSetting)->DenseRange(1, 3);

} // namespace
