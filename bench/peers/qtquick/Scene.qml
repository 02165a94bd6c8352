// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Particles

Rectangle {
    id: scene

    required property int sparks
    readonly property int parts: Math.ceil(sparks / 10000) // an ImageParticle draws 16,383 at most

    color: "black"

    ParticleSystem { id: particles }

    Repeater {
        model: scene.parts

        Item {
            id: part

            required property int index

            anchors.fill: parent

            ImageParticle {
                anchors.fill: parent
                system: particles
                groups: [part.index]
                source: "image://glow/12"
                color: "white"
                colorVariation: 1 // any colour
                alpha: 0 // nothing behind a spark is covered: it adds
                entryEffect: ImageParticle.Fade
            }

            Emitter {
                anchors.fill: parent
                system: particles
                group: part.index
                lifeSpan: 2000
                emitRate: scene.sparks / scene.parts / 2
                maximumEmitted: scene.sparks / scene.parts
                startTime: 2000 // all are there from the first frame on
                size: 12
                velocity: PointDirection { xVariation: 20; yVariation: 20 }
                acceleration: PointDirection { y: 10 }
            }
        }
    }
}
