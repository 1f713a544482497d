#include "Expect.h"

#include <KWBase/KWKeyFramedChannel.h>
#include <KWBase/KWLengthFormatter.h>
#include <KWBase/KWUnitController.h>
#include <KWFoundation/KWNotificationCenter.h>

int main() {
    //! [controller]
    KWUnitController& units = KWUnitController::sharedUnitController();
    units.setDefaultLengthUnit(KWLengthUnitCentimeter); // what the user wants to see
    units.setDefaultAngleUnit(KWAngleUnitDegree);

    const auto height = std::make_shared<KWKeyFramedChannel>("height");
    height->setUnitType(KWUnitTypeLength);
    height->setValueForKeyframe(1.5f, KWTime(0));                  // always meters
    const float shown = height->valueInUserUnitForTime(KWTime(0)); // 150
    const float stored = height->convertValueFromUserUnit(30);     // 0.3
    //! [controller]
    expect(shown == 150, "a length is shown in centimeters");
    expect(stored == 0.3f, "a length is stored in meters");

    //! [formatter]
    const auto formatter = KWLengthFormatter::defaultFormatter();
    std::cout << formatter->stringForObjectValue(KWNumber(1.5f)) << '\n'; // "150 cm"
    KWArchiveValue typed;
    formatter->getObjectValueForStringErrorDescription(typed, "2 mm"); // 0.002
    //! [formatter]
    expect(formatter->stringForObjectValue(KWNumber(1.5f)) == "150 cm", "lengths have a unit");
    expect(typed.number() && typed.number()->floatValue() == 0.002f, "the unit is read");

    //! [follow]
    int reloads = 0;
    const KWNotificationToken token = KWNotificationCenter::defaultCenter().addObserver(
        KWUnitControllerDefaultUnitDidChangeNotification, nullptr,
        [&reloads](const KWNotification&) { ++reloads; }); // values are shown anew
    units.setDefaultLengthUnit(KWLengthUnitInch);
    //! [follow]
    expect(reloads == 1, "a change of units is told");
}
