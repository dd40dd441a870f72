/** A random generator that gives the same sequence for the same seed everywhere (xorshift32). */
export class Chance {
  constructor(seed) {
    // Small seeds differ in few bits, and zero would stay zero.
    this.state = (Math.imul(seed, 0x9e3779b1) ^ 0x5bd1e995) | 0 || 1;
    for (let i = 0; i < 16; ++i) this.next();
  }

  next() {
    this.state ^= this.state << 13;
    this.state ^= this.state >>> 17;
    this.state ^= this.state << 5;
    return this.state >>> 0;
  }

  below(end) {
    return this.next() % end;
  }

  /** True once in `times`. */
  oneIn(times) {
    return this.below(times) === 0;
  }

  of(items) {
    return items[this.below(items.length)];
  }

  shuffled(items) {
    const result = [...items];
    for (let i = result.length - 1; i > 0; --i) {
      const other = this.below(i + 1);
      [result[i], result[other]] = [result[other], result[i]];
    }
    return result;
  }
}
