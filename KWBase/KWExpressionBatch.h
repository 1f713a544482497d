#pragma once

#include <KWBase/KWExpressionCode.h>
#include <KWBase/KWExpressionKernels.h>

#include <cstddef>
#include <span>

/// How many values a program may stack to be evaluated by blocks.
inline constexpr std::size_t KWExpressionBatchDepth = 64;

/// Evaluates a program that stacks at most KWExpressionBatchDepth values, block by block. `values`
/// has the size of `xs`, and may be the same memory.
void KWExpressionEvaluateBatch(const KWExpressionInstruction* code, std::size_t depth,
                               std::span<const float> xs, float y, std::span<float> values,
                               const KWExpressionChecked& checked);
