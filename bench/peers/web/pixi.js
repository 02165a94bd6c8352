// SPDX-License-Identifier: GPL-3.0-or-later

// The scene in PixiJS: one ParticleContainer, whose particles change position and colour, drawn by WebGL.

import { Container, Particle, ParticleContainer, Rectangle, Texture, WebGLRenderer } from "pixi.js";
import { Scene, colors, glow, height, makeCanvas, play, sparks, width } from "/web/scene.js";

const scene = new Scene();
const canvas = makeCanvas();
const renderer = new WebGLRenderer();
await renderer.init({ canvas, width, height, antialias: false, backgroundColor: "black" });

const texture = Texture.from(glow([255, 255, 255]));
const container = new ParticleContainer({
    texture,
    blendMode: "add",
    boundsArea: new Rectangle(0, 0, width, height), // or it would be worked out from all particles
    dynamicProperties: { position: true, color: true, vertex: false, rotation: false, uvs: false },
});
const stage = new Container(); // the blend mode of what is rendered itself would not count
stage.addChild(container);
const particles = Array.from({ length: sparks }, (_, i) => {
    const [red, green, blue] = colors[i % colors.length];
    return new Particle({ texture, anchorX: 0.5, anchorY: 0.5, tint: (red << 16) | (green << 8) | blue });
});
for (const particle of particles) {
    container.addParticle(particle);
}

play(canvas, () => {
    scene.advance();
    for (let i = 0; i < sparks; ++i) {
        const particle = particles[i];
        particle.x = scene.x[i];
        particle.y = scene.y[i];
        particle.alpha = scene.light(i);
    }
    renderer.render(stage);
});
