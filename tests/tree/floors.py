"""Fails when an include points up, or when a source of KWBase has no floor.

usage: floors.py SOURCE_DIRECTORY
"""

import pathlib
import re
import sys

# Lowest first. A source may include what stands below it and what stands beside it.
FLOORS = [
    ["KWFoundation"],
    ["KWTime", "KWVectorTarget", "KWVectorDispatch", "KWFrameworkTables", "KWUnitController", "KWExpressionBatch", "KWExpressionCode",
     "KWExpressionDerivative", "KWExpressionIndex", "KWExpressionKernelCheck", "KWExpressionKernels",
     "KWExpressionParser", "KWExpressionPrinter", "KWExpressionProgram", "KWExpressionScan", "KWExpressionStack",
     "KWExpressionText", "KWExpressionTree", "KWAlgebricInterpreter"],
    ["KWChannelOwner", "KWDeepCopy", "KWChannel"],
    ["KWConstantChannel", "KWFloat4", "KWKeyFrames", "KWKeyFrameCurve", "KWKeyFrameIndex",
     "KWKeyFrameKernels", "KWKeyFramedChannel",
     "KWKeyFramedChannelArchiving", "KWKeyFramedChannelEditing", "KWKeyFramedChannelEvaluation",
     "KWKeyFramedChannelSampling", "KWKeyFramedChannelStaging", "KWKeyFrameStage", "KWAlgebricChannel", "KWUnknownChannel", "KWChannelCursor"],
    ["KWChannelGroup", "KWChannelArray", "KWChannelArrayCursor", "KWChannelElement", "KWFormatter"],
    ["KWChannelClasses", "KWUnitFormatter"],
    ["KWLengthFormatter", "KWAngleFormatter"],
    # No Qt above this line.
    ["KWDesktop"],
    ["KWCursorImage", "KWFrameRect", "KWDevicePixels", "KWCurveRaster", "KWCurvePainter", "KWKeyCell",
     "KWChannelColorCell", "KWChannelViewDelegate", "KWChannelViewGeometry", "KWChannelView",
     "KWChannelViewBindings", "KWChannelViewDrawing", "KWChannelViewEditing", "KWChannelViewGesture", "KWChannelViewGestures",
     "KWKeyMove",
     "KWChannelViewKeys", "KWLayoutArithmetic", "KWImageBackground", "KWBackgroundView", "KWLayoutRecords",
     "KWHeldViews", "KWLayoutView", "KWStackedView", "KWStackedLabelView",
     "KWImageEditorViewGeometry", "KWOpenGLProbe", "KWImageTextures", "KWImageEditorView",
     "KWImageEditorSurface", "KWImageEditorViewDrawing", "KWImageEditorViewGestures",
     "KWAxisRange", "KWChannelViewNavigator", "KWKeyChange", "KWKeyPasteboard", "KWKeyCommands",
     "KWKeyCommandsEdits"],
    ["KWInterfaceFile", "KWPanelControls"],
    ["KWChannelEditorController", "KWChannelEditorActions", "KWChannelEditorOutlets",
     "KWChannelEditorOutline", "KWChannelEditorPasteboard", "KWChannelEditorUpdates", "KWEmbeddedChannelController"],
    ["apps"],
]
FLOOR_OF = {name: floor for floor, names in enumerate(FLOORS) for name in names}
FIRST_WITH_QT = FLOOR_OF["KWDesktop"]
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]')


def place(path):
    """The floor of a file, by its path below the source directory; None when it has none."""
    folder = path.parts[0]
    return FLOOR_OF.get(path.stem if folder == "KWBase" else folder)


def faults(root):
    for folder in ("KWFoundation", "KWBase", "KWDesktop", "apps"):
        for file in sorted((root / folder).rglob("*")):
            if file.suffix not in (".h", ".cpp"):
                continue
            path = file.relative_to(root)
            floor = place(path)
            if floor is None:
                yield f"{path}: no floor is named for it in {pathlib.Path(__file__).name}"
                continue
            for number, line in enumerate(file.read_text().splitlines(), 1):
                match = INCLUDE.match(line)
                if not match:
                    continue
                included = pathlib.PurePath(match.group(1))
                is_ours = (root / included).is_file()
                if is_ours and (place(included) is None or place(included) > floor):
                    yield f"{path}:{number}: includes {included}, which stands above it"
                if re.match(r"(Qt\w*/)?Q[A-Z]", match.group(1)) and floor < FIRST_WITH_QT:
                    yield f"{path}:{number}: includes {included}, but no Qt belongs here"


found = list(faults(pathlib.Path(sys.argv[1])))
print(*found, sep="\n", end="\n" if found else "")
sys.exit(1 if found else 0)
