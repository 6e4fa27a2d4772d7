pragma Singleton
import QtQml

/// The 4-pixel grid: distances, corner radii and letter sizes, in device-independent pixels.
QtObject {
    readonly property int space1: 4
    readonly property int space2: 8
    readonly property int space3: 12
    readonly property int space4: 16
    readonly property int space7: 28

    readonly property int radiusSmall: 7
    readonly property int radiusControl: 10
    readonly property int radiusButton: 12
    readonly property int radiusCard: 16
    readonly property int radiusAlert: 22

    readonly property int textTiny: 8
    readonly property int textSmall: 11
    readonly property int textBody: 13
    readonly property int textSubtitle: 15
    readonly property int textTitle: 17
    readonly property int textFigure: 20
    readonly property int textLarge: 24

    /// How much room a card's shadow needs around it; below it is shadowDrop more, above less.
    readonly property int shadowReach: 30
    readonly property int shadowDrop: 10

    readonly property int pressDuration: 120
    readonly property int moveDuration: 250
}
